#pragma once
#include <functional>
#include <optional>
#include <utility>

#include "base/ObservableObject.h"

namespace tarnwick {

/// A value that follows from what `compute` reads. It is computed when it is first asked for after one of
/// those has changed; while somebody observes it, or has read it within a `ReadScope`, at once, and he is
/// told only when the result differs. So `compute` is quick, and makes sense of its sources in any order of
/// their changes.
template<typename T>
class Derived {
 public:
  explicit Derived(std::function<T()> compute) : compute_(std::move(compute)) {}

  const T& get() const {
    readers_.noteRead();
    if (!value_) update();
    return *value_;
  }

  Subscription observe(std::function<void()> onChange) const {
    // Only what has been computed has sources to hear of.
    get();
    return readers_.observe(std::move(onChange));
  }

 private:
  void update() const {
    ReadScope reads([this] { sourceChanged(); });
    value_ = compute_();
    sources_ = reads.subscription();
  }
  void sourceChanged() const {
    if (!value_) return;
    const T before = *std::exchange(value_, std::nullopt);
    if (!readers_.isObserved()) return;
    update();
    if (!(before == *value_)) readers_.notifyObservers();
  }

  const std::function<T()> compute_;
  mutable std::optional<T> value_;
  mutable Subscription sources_;
  ObservableObject readers_;
};

}  // namespace tarnwick
