#include "base/ObservableObject.h"

#include <algorithm>
#include <utility>

namespace tarnwick {

Subscription ObservableObject::observe(std::function<void()> onChange) const {
  const auto observer = std::make_shared<Observer>(std::move(onChange));
  add(observer);
  return Subscription(observer);
}

void ObservableObject::add(std::weak_ptr<Observer> observer) const {
  if (telling_ == 0) std::erase_if(observers_, [](const auto& other) { return other.expired(); });
  observers_.push_back(std::move(observer));
}

bool ObservableObject::isObserved() const {
  return !std::ranges::all_of(observers_, [](const auto& observer) { return observer.expired(); });
}

void ObservableObject::notifyObservers() const {
  // What observers read is no matter of whoever made the change.
  struct Telling {
    explicit Telling(int& count) : count_(++count) {}
    ~Telling() {
      --count_;
      ReadScope::current = reader_;
    }
    int& count_;
    ReadScope* const reader_ = std::exchange(ReadScope::current, nullptr);
  } telling(telling_);
  // By index over the length at the start: an observer may add another or drop itself while it is told.
  const size_t count = observers_.size();
  for (size_t i = 0; i < count; ++i) {
    if (const auto observer = observers_[i].lock()) (*observer)();
  }
}

void ReadScope::read(const ObservableObject& object) {
  if (std::exchange(object.readBy_, serial_) == serial_) return;
  if (!observer_) observer_ = std::make_shared<ObservableObject::Observer>(onChange_);
  object.add(observer_);
}

}  // namespace tarnwick
