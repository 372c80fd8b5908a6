#pragma once
#include <cstddef>
#include <functional>
#include <string_view>

namespace tarnwick {

/// Yields the next bytes of an input, at least one; none at its end. They stay valid until the next call.
using ByteSource = std::function<std::string_view()>;

/// A byte source as an input stream for the JSON reader, so that an input is never held whole.
class ByteStream {
 public:
  using Ch = char;

  explicit ByteStream(ByteSource source) : source_(std::move(source)) { refill(); }

  bool isAtEnd() const { return chunk_.empty(); }
  /// Reads the rest and drops it, so that whoever writes it meets no closed pipe.
  void drain() {
    while (!isAtEnd()) refill();
  }

  // What the JSON reader asks of a stream. At the end it sees U+0000.
  char Peek() const { return isAtEnd() ? '\0' : chunk_[position_]; }
  char Take() {
    const char byte = Peek();
    if (!isAtEnd() && ++position_ == chunk_.size()) refill();
    return byte;
  }
  size_t Tell() const { return consumed_ + position_; }
  // Only reading in place writes.
  char* PutBegin() { return nullptr; }
  void Put(char) {}
  size_t PutEnd(char*) { return 0; }

 private:
  void refill() {
    consumed_ += position_;
    position_ = 0;
    chunk_ = source_();
  }

  ByteSource source_;
  std::string_view chunk_;
  size_t position_ = 0;
  size_t consumed_ = 0;
};

}  // namespace tarnwick
