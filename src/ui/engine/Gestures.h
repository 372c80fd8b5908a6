#pragma once
#include <memory>
#include <optional>
#include <vector>

#include "ui/Interaction.h"
#include "ui/engine/Node.h"

namespace tarnwick::ui {

class Scene;

/// What the pointer does while a button is held: presses, taps and drags, one gesture at a time. Of what lies
/// under the press the frontmost view that wants it gets it, for each kind of gesture.
class Gestures {
 public:
  explicit Gestures(Scene& scene) : scene_(scene) {}

  void press(Point point, PointerButton button, Modifiers modifiers);
  void move(Point point, Modifiers modifiers);
  void release(Point point, PointerButton button, Modifiers modifiers);
  /// Ends the gesture without its effect, and tells its views.
  void cancel();
  /// Tells views that have gone, or take no input any more, that their part in the gesture is over.
  void cancelVanished();
  bool isUnderWay() const { return button_.has_value(); }

 private:
  /// A view's part in the gesture.
  class Part {
   public:
    Part() = default;
    explicit Part(Node& node) : node_(node), interaction_(node.attributes.interaction) {}
    /// The view, while it is there and takes input.
    Node* node() const;
    /// What it does with the pointer: as described now, or last when it has gone. Null: no such part.
    std::shared_ptr<const Interaction> interaction() const;
    bool hasVanished() const { return interaction_ && !node(); }
    explicit operator bool() const { return interaction_ != nullptr; }

   private:
    WeakNode node_;
    mutable std::shared_ptr<const Interaction> interaction_;
  };

  void assign(const std::vector<Node*>& under);
  bool send(const Part& part, PointerEvent::Phase phase, Point point, Modifiers modifiers) const;
  void showPress(bool pressed);
  void startDrags(Point point);
  void tellDrags(std::function<void(const DragValue&)> DragGesture::*handler, Point point);
  void openMenu();
  bool dragFiles(Point point);
  void cancelPointer();
  void cancelDrags();
  bool isOver(const Part& part, Point point, bool (*wanted)(const Interaction&)) const;
  Node* comingTo(Point point, const std::vector<Node*>& under) const;
  bool belongsToLastTap(const Node& node) const;

  Scene& scene_;
  /// The one that began the gesture; none between gestures.
  std::optional<PointerButton> button_;
  Point start_;
  Modifiers modifiers_;
  /// The view that has taken the pointer for itself; those that want taps, show that they are pressed, or are
  /// dragged.
  Part pointer_, tap_, press_, drag_, files_, menu_;
  bool pressShown_ = false;
  /// Which of the drags of `drag_` have begun, and how far the pointer moves at least before one does.
  std::vector<bool> dragging_;
  double leastDrag_ = 0;

  int clicks_ = 0;
  Point lastPoint_;
  PointerButton lastButton_ = PointerButton::primary;
  double lastTime_ = 0;
  /// The serial number of the view that was tapped last.
  unsigned long lastTapped_ = 0;
};

}  // namespace tarnwick::ui
