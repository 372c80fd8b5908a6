#pragma once
#include <QImage>
#include <QTransform>
#include <array>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/ObservableObject.h"
#include "ui/Description.h"
#include "ui/engine/AnimatedValues.h"
#include "ui/engine/Element.h"

namespace tarnwick::ui {

class Scene;
class WeakNode;

/// A view on the screen: the live counterpart of a `Description`. It keeps what outlasts one description:
/// local state, the place, and every number that is on its way somewhere.
class Node {
 public:
  Node(Scene& itsScene, Node* itsParent, const View& view);
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

  /// What the element keeps here: of the class that its `makeState` makes.
  template<typename State>
  State& state() const {
    return static_cast<State&>(*state_);
  }
  /// Has the element build its content again with the next commit. May be called at any time.
  void renew();

  Scene& scene;
  Node* parent;
  std::vector<std::unique_ptr<Node>> children;
  /// Children that vanished from the description and are shown until their transition is over, behind the
  /// others.
  std::vector<std::unique_ptr<Node>> leaving;

  /// Has the node renewed when something changes that its element read while it built the content.
  Subscription reads;

  // What is described
  std::shared_ptr<const Description> description;
  /// The one described, or an earlier one that is equal: it may know how it is drawn already.
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
  double pixelRatio;
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
  /// How often that commit has renewed it.
  int renewals = 0;
  bool isNew = true;
  bool isLeaving = false;

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
  /// Keys have brought the keyboard's focus here, and the window has the keyboard.
  bool hasFocusRing = false;
  /// A child came or went since the last frame.
  bool childrenChanged = true;
  /// Its content as a picture, before blur and opacity, at `scale` pixels a point.
  struct Group {
    QImage image;
    Rect rect;
    double scale = 0;
  };
  std::unique_ptr<Group> group;
  /// The shadow that this picture casts, where its outline alone does not tell.
  struct CastShadow : Group {
    Color color;
  };
  std::unique_ptr<CastShadow> castShadow;

  Rect presentedFrame() const {
    const auto& f = frameMotion.presented();
    return f.empty() ? frame : Rect{f[0], f[1], f[2], f[3]};
  }
  /// What it covers in the scene, as presented, with all effects but its own overflow.
  Rect presentedInScene() const;
  bool isMoving() const;
  /// It moves, and will come to rest.
  bool isSettling() const;
  /// It, or a view around it, is on its way out.
  bool leaves() const;
  /// It, or a view around it, is making its entrance.
  bool arrives() const;

 private:
  friend class WeakNode;
  std::array<const AnimatedValues*, 8> motions() const {
    return {&frameMotion, &effects, &transition, &values, &clip, &shadows, &change, &bounce};
  }

  static inline unsigned long lastSerial = 0;
  const std::unique_ptr<ElementState> state_;
  /// Points at the node itself; made when somebody wants to remember it.
  std::shared_ptr<Node*> self_;
};

/// Remembers a node that may go at any time: for everything that outlasts a look at the tree.
class WeakNode {
 public:
  WeakNode() = default;
  WeakNode(std::nullptr_t) {}
  WeakNode(Node& node) {
    if (!node.self_) node.self_ = std::make_shared<Node*>(&node);
    self_ = node.self_;
  }
  WeakNode(Node* node) {
    if (node) *this = *node;
  }
  /// The node, or null once it is gone.
  Node* get() const {
    const auto self = self_.lock();
    return self ? *self : nullptr;
  }
  operator Node*() const { return get(); }
  Node* operator->() const { return get(); }

 private:
  std::weak_ptr<Node*> self_;
};

std::vector<double> numbers(const Effects& effects);
std::vector<double> shadowNumbers(const std::vector<Attributes::Shadow>& shadows);
std::vector<Attributes::Shadow> shadowsOf(const std::vector<double>& numbers);
Effects effectsOf(const std::vector<double>& numbers, UnitPoint anchor);

}  // namespace tarnwick::ui
