#pragma once
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "base/Date.h"
#include "base/ObservableObject.h"
#include "ui/Beat.h"
#include "ui/View.h"

namespace tarnwick::ui {

/// Local state of one place on the screen. It lives as long as that place is shown, or somebody holds it.
template<typename T>
class State {
 public:
  explicit State(T initial) : cell_(std::make_shared<Cell>()) { cell_->value = std::move(initial); }

  operator const T&() const { return get(); }
  const T& get() const {
    cell_->noteRead();
    return cell_->value;
  }
  /// Stores the value; when it differs, the views that have read it are made anew. Wrap in `withAnimation` to
  /// animate.
  void set(T value) const {
    if (cell_->value == value) return;
    cell_->value = std::move(value);
    cell_->notifyObservers();
  }

 private:
  struct Cell : ObservableObject {
    T value;
  };
  std::shared_ptr<Cell> cell_;
};

/// The parts of a view that may be made anew on their own.
struct DynamicBody {
  /// Makes the local state, when the place is first shown.
  std::function<std::shared_ptr<void>()> makeState;
  std::function<View(const std::shared_ptr<void>& state, Date now)> body;
  std::optional<Beat> beat = {};
};
/// A view made anew whenever something changes that its body has read: an `Observed` property or a `State`.
View dynamic(DynamicBody body);

/// The same with local state.
template<typename T, typename Body>
View stateful(T initial, Body body) {
  return dynamic({.makeState = [initial] { return std::make_shared<State<T>>(initial); },
      .body = [body](const auto& state, Date) { return body(*static_cast<const State<T>*>(state.get())); }});
}

/// The same, without.
View observing(std::function<View()> body);

/// A view made anew every `interval` seconds with the current time, while it is not paused. Where it cannot
/// be seen it costs nothing.
View timeline(double interval, bool paused, std::function<View(Date now)> body);
View everySecond(std::function<View(Date now)> body);

/// A view that counts down to `end`: `body` is called with the whole seconds that are left, the one that has
/// begun included, anew at each second before `end`, the last time with 0.
View countdown(Date end, std::function<View(int seconds)> body);

}  // namespace tarnwick::ui
