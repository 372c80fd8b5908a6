#pragma once
#include <QImage>
#include <QTransform>
#include <array>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/ObservableObject.h"
#include "base/Scheduler.h"
#include "ui/Description.h"
#include "ui/Dynamic.h"
#include "ui/engine/AnimatedValues.h"

namespace tarnwick::ui {

/// A view on the screen: the live counterpart of a `Description`. It keeps what outlasts one description:
/// local state, the place, and every number that is on its way somewhere.
class Node {
 public:
  explicit Node(Node* parentNode) : parent(parentNode) {}
  ~Node();
  Node(const Node&) = delete;

  /// Tells the node from all others that there are and have been.
  const unsigned long serial = ++lastSerial;

  // For elements that lay out their children.
  /// Answers from memory where the same was asked before in this layout.
  Measured measure(Proposal proposal);
  /// Puts the node into the parent's box. `pin` is the point of the parent's box that it keeps its distance
  /// to while the box is on its way to another size.
  void place(const Rect& rect, UnitPoint pin = UnitPoint::topLeading);
  /// The live child described at that position of the list of children, or null.
  Node* child(int slot) const;
  Node* firstChild() const { return children.empty() ? nullptr : children.front().get(); }

  Node* parent;
  std::vector<std::unique_ptr<Node>> children;
  /// Children that vanished from the description and are shown until their transition is over, behind the
  /// others.
  std::vector<std::unique_ptr<Node>> leaving;

  // What is described
  std::shared_ptr<const Element> element;
  Attributes attributes;
  Environment environment;
  std::string identity;
  int slot = 0;

  // Where it is laid out
  Rect frame;
  UnitPoint pin = UnitPoint::topLeading;
  /// Its own size in the layout before, to tell its leaving children how far it grew.
  Size oldSize;
  double pixelRatio = 1;
  std::vector<std::pair<Proposal, Measured>> measured;

  // What is on its way
  AnimatedValues frameMotion, effects, transition, values, clip, shadows, change, bounce;
  /// Of the transition's scale: insertion and removal may have different ones.
  UnitPoint transitionAnchor;
  /// The content that gives way to a new one, and the size that it was laid out for.
  std::shared_ptr<const Element> previous;
  Size previousSize;
  /// The animation for what the commit of that number altered here.
  std::optional<Animation> commitAnimation;
  /// The same for its frame, which belongs to the views around it.
  std::optional<Animation> frameAnimation;
  unsigned commitNumber = 0;
  bool isNew = true;
  bool isLeaving = false;

  // Renewed on its own
  std::shared_ptr<StateCell> cell;
  std::vector<const ObservableObject*> observed;
  std::vector<Subscription> subscriptions;

  // Scrolled
  Point scroll;
  size_t firstRow = 0, rowCount = 0;
  bool rowsKnown = false;
  /// The size that its content was built for, where that depends on it.
  std::optional<Size> builtFor;

  // As presented: relative to the parent's content, to the scene, and of the content inside
  QTransform local, transform, contentTransform;
  Size presentedSize;
  double opacity = 1, blurRadius = 0, brightening = 0;
  std::vector<double> shadowsShown;
  /// What it and everything inside covers in the scene, effects included.
  Rect bounds;
  /// What its own drawing covers, and what that and everything inside cover before blur and shadow.
  Rect ownBounds, contentBounds;
  /// May be seen: neither clipped away nor fully transparent.
  bool visible = false;
  bool needsDraw = true;
  /// A child came or went since the last frame.
  bool childrenChanged = true;
  /// Its content as a picture, before blur and opacity, at `scale` pixels a point.
  struct Group {
    QImage image;
    Rect rect;
    double scale = 0;
  };
  std::unique_ptr<Group> group;

  Rect presentedFrame() const {
    const auto& f = frameMotion.presented();
    return f.empty() ? frame : Rect{f[0], f[1], f[2], f[3]};
  }
  bool isMoving() const;

 private:
  static inline unsigned long lastSerial = 0;
};

std::vector<double> numbers(const Effects& effects);
std::vector<double> shadowNumbers(const std::vector<Attributes::Shadow>& shadows);
std::vector<Attributes::Shadow> shadowsOf(const std::vector<double>& numbers);
Effects effectsOf(const std::vector<double>& numbers, UnitPoint anchor);

}  // namespace tarnwick::ui
