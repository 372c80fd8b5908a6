#pragma once
#include <functional>

#include "ui/engine/Node.h"

namespace tarnwick::ui {

/// Moves a tree of nodes to an instant: what is where, what can be seen, and what looks different than
/// before.
class Presenter {
 public:
  Presenter(double now, std::function<void(const Rect&)> damage) : now_(now), damage_(std::move(damage)) {}
  void present(Node& root, const Rect& window);
  bool moving() const { return moving_; }
  /// Something moves that will come to rest.
  bool settling() const { return settling_; }

 private:
  struct Outer {
    QTransform transform;
    Rect clip;
    bool visible;
    /// Neither faded nor blurred, scaled or turned.
    bool undisturbed;
    /// The damage of an outer node covers this one as well.
    bool covered;
    /// How far the effects of outer nodes spread a change.
    double spread;
  };
  bool present(Node& node, const Outer& outer);
  bool advance(Node& node);
  void placeInScene(Node& node, const Outer& outer);
  Rect mapped(const Node& node, const Rect& rect) const;

  double now_;
  std::function<void(const Rect&)> damage_;
  bool moving_ = false, settling_ = false;
};

}  // namespace tarnwick::ui
