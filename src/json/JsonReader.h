#pragma once
#include <memory>
#include <string>
#include <string_view>

namespace tarnwick {

/// Is told what stands in a JSON text, in its order. Keys, strings and numbers come in parts of any length,
/// the last one, which may be empty, with `isEnd`; numbers as they are written.
class JsonHandler {
 public:
  virtual ~JsonHandler() = default;
  virtual void beginObject() = 0;
  virtual void beginArray() = 0;
  /// The innermost object or array that is open ends.
  virtual void endContainer() = 0;
  virtual void key(std::string_view part, bool isEnd) = 0;
  virtual void string(std::string_view part, bool isEnd) = 0;
  virtual void number(std::string_view part, bool isEnd) = 0;
  virtual void boolean(bool value) = 0;
  virtual void null() = 0;
};

/// Reads one JSON text (RFC 8259) that arrives in pieces of any size; a byte-order mark before it is passed
/// over. It holds a few kilobytes, however long the text and whatever is in it. Deeper than 512 levels it
/// does not follow.
class JsonReader {
 public:
  /// What becomes of an escape of one half of a surrogate pair without the other.
  enum class Halves {
    /// U+FFFD. Bytes that are not UTF-8 are an error.
    replaced,
    /// It comes as if it were a character, in three bytes that are not UTF-8. So nothing else in the text may
    /// be that either, which is not looked at.
    kept
  };

  JsonReader(JsonHandler& handler, Halves halves);
  ~JsonReader();

  /// Takes the next bytes. @return false when the text is not JSON: nothing more is read.
  bool read(std::string_view bytes) { return take(bytes, false); }
  /// Tells that nothing more comes. @return whether all was one JSON value.
  bool finish() { return take({}, true); }
  /// What was wrong, and where.
  std::string error() const;

 private:
  struct Parser;

  bool take(std::string_view bytes, bool isLast);
  bool parse(std::string_view bytes, bool isLast);
  bool passHalf(unsigned unit);

  const std::unique_ptr<Parser> parser_;
  const Halves halves_;
  bool isAtStart_ = true;
  /// What may be the start of a byte-order mark or of an escape.
  std::string held_;
  /// How much of the text has been parsed.
  size_t offset_ = 0;
};

}  // namespace tarnwick
