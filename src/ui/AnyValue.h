#pragma once
#include <concepts>
#include <memory>
#include <typeinfo>
#include <utility>

namespace tarnwick {
template<typename T>
class Observed;
}

namespace tarnwick::ui {

template<typename T>
class State;

/// A value of any comparable type, kept only to see whether it changed.
class AnyValue {
 public:
  AnyValue() = default;
  template<std::equality_comparable T>
  requires(!std::same_as<T, AnyValue>) AnyValue(T value) : box_(std::make_shared<Box<T>>(std::move(value))) {}
  /// What stands for a value counts as that value.
  template<typename T>
  AnyValue(const State<T>& state) : AnyValue(state.get()) {}
  template<typename T>
  AnyValue(const Observed<T>& property) : AnyValue(property.get()) {}

  // A template, so that nothing is converted to compare it: every pair that holds a value would ask for that.
  template<std::same_as<AnyValue> Same>
  friend bool operator==(const Same& a, const Same& b) {
    if (a.box_ == b.box_) return true;
    return a.box_ && b.box_ && a.box_->equals(*b.box_);
  }

 private:
  struct Holder {
    virtual ~Holder() = default;
    virtual bool equals(const Holder& other) const = 0;
  };
  template<typename T>
  struct Box : Holder {
    explicit Box(T v) : value(std::move(v)) {}
    bool equals(const Holder& other) const override {
      const auto* same = dynamic_cast<const Box*>(&other);
      return same && same->value == value;
    }
    T value;
  };
  std::shared_ptr<const Holder> box_;
};

}  // namespace tarnwick::ui
