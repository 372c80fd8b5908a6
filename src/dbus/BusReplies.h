#pragma once
#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace tarnwick {

/// Follows what a message bus sends back on one connection, byte by byte and without keeping it, and counts
/// the replies to method calls.
class BusReplies {
 public:
  /// @return false when the bytes are not what a bus sends, or the bus refuses the connection: nothing more
  /// will be understood.
  bool consume(std::string_view bytes);
  /// How many calls have been answered, by a result or by an error.
  size_t count() const { return count_; }

 private:
  enum class Part { authentication, header, rest, broken };

  bool endLine();
  bool endHeader();

  Part part_ = Part::authentication;
  /// The start of the line or of the message's header that is being read.
  std::array<char, 16> start_{};
  /// How much of it has come; a line may be longer than what is kept of it.
  size_t length_ = 0;
  /// How many bytes of the message are still to come.
  uint64_t remaining_ = 0;
  bool isReply_ = false;
  size_t count_ = 0;
};

}  // namespace tarnwick
