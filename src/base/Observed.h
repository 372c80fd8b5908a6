#pragma once
#include <utility>

#include "base/ObservableObject.h"

namespace tarnwick {

/// A property of an `ObservableObject` that reads like a `T`. An assignment that differs from the stored
/// value tells whoever has read the property within a `ReadScope`, then the observers of the owner.
template<typename T>
class Observed {
 public:
  explicit Observed(const ObservableObject& owner, T initial = {})
      : owner_(owner), value_(std::move(initial)) {}
  Observed(const Observed&) = delete;

  Observed& operator=(T value) {
    if (!(value_ == value)) {
      value_ = std::move(value);
      tell();
    }
    return *this;
  }
  Observed& operator=(const Observed& other) { return *this = other.get(); }

  const T& get() const {
    readers_.noteRead();
    return value_;
  }
  operator const T&() const { return get(); }
  const T* operator->() const { return &get(); }
  const T& operator*() const { return get(); }

  /// Changes the value in place (for containers): `change` gets a reference and answers whether it altered
  /// it.
  template<typename Change>
  void mutate(Change change) {
    if (change(value_)) tell();
  }

 private:
  void tell() const {
    readers_.notifyObservers();
    owner_.notifyObservers();
  }

  const ObservableObject& owner_;
  ObservableObject readers_;
  T value_;
};

}  // namespace tarnwick
