#pragma once
#include <unistd.h>

#include <utility>

namespace tarnwick {

/// An open file or socket, closed with its owner; negative when there is none.
class Descriptor {
 public:
  explicit Descriptor(int value = -1) : value_(value) {}
  Descriptor(Descriptor&& other) noexcept : value_(std::exchange(other.value_, -1)) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    std::swap(value_, other.value_);
    return *this;
  }
  ~Descriptor() {
    if (value_ >= 0) ::close(value_);
  }
  operator int() const { return value_; }

 private:
  int value_;
};

}  // namespace tarnwick
