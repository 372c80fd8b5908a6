#pragma once
#include <utility>

#include "base/ObservableObject.h"

namespace tarnwick {

/// A property of an `ObservableObject` that reads like a `T`. An assignment tells the owner's observers only
/// when the value differs from the stored one.
template<typename T>
class Observed {
 public:
  explicit Observed(const ObservableObject& owner, T initial = {}) : owner_(owner), value_(std::move(initial)) {}
  Observed(const Observed&) = delete;

  Observed& operator=(T value) {
    if (!(value_ == value)) {
      value_ = std::move(value);
      owner_.notifyObservers();
    }
    return *this;
  }
  Observed& operator=(const Observed& other) { return *this = other.value_; }

  const T& get() const { return value_; }
  operator const T&() const { return value_; }
  const T* operator->() const { return &value_; }
  const T& operator*() const { return value_; }

  /// Changes the value in place (for containers): `change` gets a reference and answers whether it altered it.
  template<typename Change>
  void mutate(Change change) {
    if (change(value_)) owner_.notifyObservers();
  }

 private:
  const ObservableObject& owner_;
  T value_;
};

}  // namespace tarnwick
