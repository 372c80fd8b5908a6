#pragma once
#include <string>

#include "cli/ByteStream.h"
#include "cli/NumberScanner.h"

namespace tarnwick {

/// Hands JSON text on in a form that the JSON reader takes. The reader refuses two things that the grammar
/// allows: numbers that a double cannot hold, and escapes of half a surrogate pair, which programs write that
/// cut a text in the middle of an emoji. Every number becomes 0, every lone half \ufffd; malformed text stays
/// malformed.
class JsonFilter {
 public:
  explicit JsonFilter(ByteSource source) : source_(std::move(source)) {}

  /// The next bytes, as of a `ByteSource`.
  std::string_view operator()();

 private:
  enum class Place { outside, number, string, escape };

  std::string_view takeRun();
  std::string_view takeNumber();
  std::string_view takeEscape();
  std::string_view finishEscape(bool isCodeUnit);

  ByteSource source_;
  std::string_view rest_;
  Place place_ = Place::outside;
  NumberScanner number_;
  /// The escape that is being collected.
  std::string escape_;
  /// An escaped high half, held until it is known whether the low one follows.
  std::string highHalf_;
  std::string output_;
};

}  // namespace tarnwick
