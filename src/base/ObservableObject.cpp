#include "base/ObservableObject.h"

#include <algorithm>

namespace tarnwick {

Subscription ObservableObject::observe(std::function<void()> onChange) const {
  std::erase_if(observers_, [](const auto& observer) { return observer.expired(); });
  auto observer = std::make_shared<std::function<void()>>(std::move(onChange));
  observers_.push_back(observer);
  return Subscription(observer);
}

void ObservableObject::notifyObservers() const {
  // By index over the length at the start: an observer may add another or drop itself while it is told.
  const size_t count = observers_.size();
  for (size_t i = 0; i < std::min(count, observers_.size()); ++i) {
    if (auto observer = observers_[i].lock()) (*observer)();
  }
}

}  // namespace tarnwick
