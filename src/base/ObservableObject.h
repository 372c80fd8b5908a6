#pragma once
#include <functional>
#include <memory>
#include <vector>

namespace tarnwick {

class ObservableObject;
class ReadScope;

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
  /// To be called where state is handed out whose changes the observers are told of: it makes the `ReadScope`
  /// around the reader, if there is one, such an observer. `Observed` does it by itself.
  inline void noteRead() const;
  /// Whether there is an observer.
  bool isObserved() const;

 private:
  friend class ReadScope;
  using Observer = std::function<void()>;
  void add(std::weak_ptr<Observer> observer) const;

  mutable std::vector<std::weak_ptr<Observer>> observers_;
  /// How many notifications are under way: meanwhile everybody keeps his place in the list.
  mutable int telling_ = 0;
  /// The last scope that has read it.
  mutable unsigned long readBy_ = 0;
};

/// Collects what is read between its beginning and its end: `onChange` is called whenever some of that
/// changes, as long as the `subscription` is kept. Scopes nest; a read belongs to the innermost. Costs
/// nothing where nothing is read.
class ReadScope {
 public:
  explicit ReadScope(std::function<void()> onChange)
      : onChange_(std::move(onChange)), serial_(++lastSerial), outer_(current) {
    current = this;
  }
  ~ReadScope() { current = outer_; }
  ReadScope(const ReadScope&) = delete;
  ReadScope& operator=(const ReadScope&) = delete;

  Subscription subscription() const { return Subscription(observer_); }

 private:
  friend class ObservableObject;
  void read(const ObservableObject& object);

  static inline ReadScope* current = nullptr;
  static inline unsigned long lastSerial = 0;

  std::function<void()> onChange_;
  std::shared_ptr<ObservableObject::Observer> observer_;
  const unsigned long serial_;
  ReadScope* const outer_;
};

void ObservableObject::noteRead() const {
  if (ReadScope::current) ReadScope::current->read(*this);
}

}  // namespace tarnwick
