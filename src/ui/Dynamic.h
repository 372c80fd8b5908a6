#pragma once
#include <functional>
#include <memory>
#include <vector>

#include "base/Date.h"
#include "base/ObservableObject.h"
#include "ui/View.h"

namespace tarnwick::ui {

/// Local state of one place on the screen. It lives as long as that place is shown.
class StateCell {
 public:
  virtual ~StateCell() = default;
  /// Set by the scene that shows it; empty once it does not any more.
  std::function<void()> invalidate;
};

template<typename T>
class State {
 public:
  struct Cell : StateCell {
    explicit Cell(T initial) : value(std::move(initial)) {}
    T value;
  };
  explicit State(std::shared_ptr<Cell> cell) : cell_(std::move(cell)) {}

  operator const T&() const { return cell_->value; }
  const T& get() const { return cell_->value; }
  /// Stores the value; when it differs, the view is made anew. Wrap in `withAnimation` to animate.
  void set(T value) const {
    if (cell_->value == value) return;
    cell_->value = std::move(value);
    if (cell_->invalidate) cell_->invalidate();
  }

 private:
  std::shared_ptr<Cell> cell_;
};

/// The parts of a view that may be made anew on their own.
struct DynamicBody {
  std::function<std::shared_ptr<StateCell>()> makeState;
  std::function<View(const std::shared_ptr<StateCell>&, Date now)> body;
  std::vector<const ObservableObject*> observed = {};
  /// Seconds between two automatic renewals; 0: none.
  double interval = 0;
};
View dynamic(DynamicBody body);

/// A view with local state: `body` is called again whenever the state changes.
template<typename T, typename Body>
View stateful(T initial, Body body) {
  using Cell = typename State<T>::Cell;
  return dynamic({.makeState = [initial] { return std::make_shared<Cell>(initial); },
                  .body = [body](const std::shared_ptr<StateCell>& cell,
                                 Date) { return body(State<T>(std::static_pointer_cast<Cell>(cell))); }});
}

/// A view made anew whenever one of the objects changes. The objects outlive it.
View observing(std::vector<const ObservableObject*> objects, std::function<View()> body);

/// A view made anew every `interval` seconds with the current time, while it is not paused. Where it cannot
/// be seen it costs nothing.
View timeline(double interval, bool paused, std::function<View(Date now)> body);
View everySecond(std::function<View(Date now)> body);

}  // namespace tarnwick::ui
