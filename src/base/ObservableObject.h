#pragma once
#include <functional>
#include <memory>
#include <vector>

namespace tarnwick {

class ObservableObject;

/// Keeps an observer registered; destroying it ends the observation. It may outlive the observed object.
class [[nodiscard]] Subscription {
 public:
  Subscription() = default;
  explicit Subscription(std::shared_ptr<void> observer) : observer_(std::move(observer)) {}

 private:
  std::shared_ptr<void> observer_;
};

/// Something with observable properties (see `Observed`). Observers are called at once, on the main thread,
/// after the property holds its new value.
class ObservableObject {
 public:
  ObservableObject() = default;
  ObservableObject(const ObservableObject&) = delete;
  ObservableObject& operator=(const ObservableObject&) = delete;

  Subscription observe(std::function<void()> onChange) const;
  /// Tells the observers; called by the object's own properties.
  void notifyObservers() const;

 private:
  mutable std::vector<std::weak_ptr<std::function<void()>>> observers_;
};

}  // namespace tarnwick
