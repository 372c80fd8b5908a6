#pragma once
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/Geometry.h"
#include "ui/Beat.h"
#include "ui/Environment.h"
#include "ui/View.h"

class QPainter;

namespace tarnwick::ui {

class Node;

/// The size that a parent offers; absent: the child's own choice.
struct Proposal {
  std::optional<double> width, height;
  friend bool operator==(const Proposal&, const Proposal&) = default;
};

/// What a child answers.
struct Measured {
  Size size;
  /// Distance of the first line's baseline from the top.
  std::optional<double> baseline = {};
};

/// What an element draws with.
struct DrawContext {
  QPainter& painter;
  /// The size as presented now, and the one it was laid out for.
  Size size, layoutSize;
  /// The size that `previous` was laid out for.
  Size previousSize;
  const Environment& environment;
  /// `animatedValues`, as presented now.
  const std::vector<double>& values;
  /// While one content gives way to another: what was shown before, and how far the change is (0…1).
  const class Element* previous;
  double change;
};

/// What tells one kind of element from the others: each kind is one object, compared by its address.
class ElementKind {
 public:
  constexpr explicit ElementKind(std::string_view name) : name_(name) {}
  ElementKind(const ElementKind&) = delete;
  /// Unique as well: part of a view's identity.
  constexpr std::string_view name() const { return name_; }
  friend constexpr bool operator==(const ElementKind& a, const ElementKind& b) { return &a == &b; }

 private:
  std::string_view name_;
};

/// What an element keeps at the node that shows it, from one description to the next.
class ElementState {
 public:
  virtual ~ElementState() = default;
};

/// Takes the views that an element has inside of its node.
class Content {
 public:
  /// Brings the node's children in line with `views`. Those that come and go do so by their transitions.
  virtual void show(const Views& views) = 0;
  /// The same for views that are just there: what scrolls into sight makes no entrance.
  virtual void showAtOnce(const Views& views) = 0;

 protected:
  ~Content() = default;
};

/// One kind of view: what is inside of it, how it measures itself, places its children and draws. Elements
/// never change; what changes lives in the `Node` that shows them. The scene knows no element but through
/// this class.
class Element {
 public:
  virtual ~Element() = default;
  virtual const ElementKind& kind() const = 0;
  /// Whether it draws and measures as `other`, which is of the same kind.
  virtual bool equals(const Element& other) const = 0;

  // What is inside
  /// What it keeps at a node: made with the node, kept until its end.
  virtual std::unique_ptr<ElementState> makeState() const { return nullptr; }
  /// Shows what is inside: the views that it was described with, unless it makes its own. Called with each
  /// new description, after `Node::renew`, and when something changes that it read (see `ReadScope`).
  virtual void build(Node&, const Views& described, Content& content) const { content.show(described); }
  /// The same for what depends on sizes and places: called after each layout, which is done again when
  /// something is shown.
  virtual void buildForLayout(Node&, Content&) const {}
  /// Has the node renewed by the clock, while it can be seen.
  virtual std::optional<Beat> beat() const { return std::nullopt; }

  /// Whether it may need another size than `before`, which it takes over from.
  virtual bool affectsLayout(const Element&) const { return true; }

  /// The numbers that are to be animated when they change.
  virtual std::vector<double> animatedValues(const Environment&) const { return {}; }
  /// The first child's answer; without children all that is offered, 10 points where nothing is.
  virtual Measured measure(Node& node, Proposal proposal) const;
  /// Gives every child all of `size`.
  virtual void place(Node& node, Size size) const;
  /// Whether there is nothing to be seen of it now: then a stack leaves no gap for it.
  virtual bool isNothing(const Node&) const { return false; }
  /// Called with each frame, when the node has been put into its place. `undisturbed`: it is seen just as it
  /// was laid out, moved at most. @return whether it has to be drawn again.
  virtual bool presented(Node&, bool) const { return false; }
  virtual void draw(DrawContext&) const {}
  /// Whether `draw` does anything.
  virtual bool draws() const { return false; }
  /// Whether it may draw one thing over another, so that it has to be faded as one picture.
  virtual bool drawsOverItself() const { return false; }
  /// The outline of what is drawn with these values, for a shadow; none: it has no simple one.
  virtual std::optional<Shape> outline(const std::vector<double>&) const { return std::nullopt; }
  /// Whether it covers its whole frame with these values, so that nothing behind shows through.
  virtual bool isOpaque(const std::vector<double>&) const { return false; }
  /// It is a window on its content: what lies outside of it is cut off.
  virtual bool clips() const { return false; }
  /// How far its content is scrolled, in points.
  virtual Point scrolled(const Node&) const { return {}; }
  /// Whether its content can follow a finger by any of `delta` (points), and has it do so as far as it goes.
  virtual bool canScroll(const Node&, Point) const { return false; }
  virtual void scroll(Node&, Point) const {}
  /// Whether its content is laid out for the final size and drawn scaled to the present one.
  virtual bool scalesContent() const { return false; }
  /// Whether its children are told apart by their place in the list alone.
  virtual bool hasFixedSlots() const { return false; }
  /// How far it draws beyond its frame, in points.
  virtual double overflow(const Environment&) const { return 0; }
  /// What there is to read, or which symbol it is: for tests.
  virtual std::string content() const { return {}; }
};

/// Stands for its child, and is nothing without one.
class WrapperElement : public Element {
 public:
  bool isNothing(const Node& node) const override;
  Measured measure(Node& node, Proposal proposal) const override;
};

/// The element as one of class `Kind`; null where it is another, or null.
template<typename Kind>
const Kind* as(const Element* element) {
  return element && element->kind() == Kind::itsKind ? static_cast<const Kind*>(element) : nullptr;
}

/// Whether two elements are interchangeable.
bool equal(const Element& a, const Element& b);

}  // namespace tarnwick::ui
