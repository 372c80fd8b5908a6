#include <algorithm>
#include <cmath>

#include "ui/engine/Node.h"

namespace tarnwick::ui {
namespace {

struct ScrollState : ElementState {
  Point offset;
};

/// Shows a part of its content, which may be longer than itself along one axis.
class ScrollElement : public Element {
 public:
  explicit ScrollElement(Axis axis) : axis_(axis) {}
  static constexpr ElementKind itsKind{"ScrollView"};
  const ElementKind& kind() const override { return itsKind; }
  bool equals(const Element& other) const override {
    return static_cast<const ScrollElement&>(other).axis_ == axis_;
  }
  std::unique_ptr<ElementState> makeState() const override { return std::make_unique<ScrollState>(); }
  Measured measure(Node& node, Proposal proposal) const override;
  void place(Node& node, Size size) const override;
  bool clips() const override { return true; }
  Point scrolled(const Node& node) const override { return node.state<ScrollState>().offset; }
  bool canScroll(const Node& node, Point delta) const override {
    return limited(node, scrolled(node) - delta) != scrolled(node);
  }
  void scroll(Node& node, Point delta) const override {
    node.state<ScrollState>().offset = limited(node, scrolled(node) - delta);
  }

 private:
  /// The offset next to that one which shows nothing beside the content.
  Point limited(const Node& node, Point offset) const;
  Axis axis_;
};

Point ScrollElement::limited(const Node& node, Point offset) const {
  const Node* content = node.firstChild();
  if (!content) return {};
  const auto within = [](double value, double whole, double window) {
    return std::clamp(value, 0.0, std::max(0.0, whole - window));
  };
  if (axis_ == Axis::vertical) return {0, within(offset.y, content->frame.height, node.frame.height)};
  return {within(offset.x, content->frame.width, node.frame.width), 0};
}

Measured ScrollElement::measure(Node& node, Proposal proposal) const {
  Node* content = node.firstChild();
  if (!content) return {{proposal.width.value_or(0), proposal.height.value_or(0)}};
  if (axis_ == Axis::vertical) {
    const Size own = content->measure({proposal.width, std::nullopt}).size;
    return {{own.width, proposal.height.value_or(own.height)}};
  }
  const Size own = content->measure({std::nullopt, proposal.height}).size;
  return {{proposal.width.value_or(own.width), own.height}};
}

void ScrollElement::place(Node& node, Size size) const {
  Node* content = node.firstChild();
  if (!content) return;
  const bool vertical = axis_ == Axis::vertical;
  Size wanted =
      content
          ->measure({vertical ? std::optional(size.width) : std::nullopt,
              vertical ? std::nullopt : std::optional(size.height)})
          .size;
  (vertical ? wanted.width : wanted.height) = vertical ? size.width : size.height;
  content->place({0, 0, wanted.width, wanted.height});
  scroll(node, {});
}

/// Which items there are as views.
struct LazyState : ElementState {
  bool known = false;
  size_t first = 0, count = 0;
};

/// Items of one length, of which those in view are built.
class LazyElement : public Element {
 public:
  LazyElement(Axis axis, LazyItems items) : axis_(axis), items_(std::move(items)) {}
  static constexpr ElementKind verticalKind{"LazyVStack"}, horizontalKind{"LazyHStack"};
  const ElementKind& kind() const override { return vertical() ? verticalKind : horizontalKind; }
  bool equals(const Element&) const override { return false; }
  std::unique_ptr<ElementState> makeState() const override { return std::make_unique<LazyState>(); }
  void build(Node& node, const Views&, Content& content) const override {
    if (node.state<LazyState>().known) content.show(views(node));
  }
  void buildForLayout(Node& node, Content& content) const override;
  Measured measure(Node& node, Proposal proposal) const override;
  void place(Node& node, Size size) const override;

 private:
  bool vertical() const { return axis_ == Axis::vertical; }
  /// The items that can be seen in the scroll view around `node`, and some beyond.
  std::pair<size_t, size_t> rangeInView(const Node& node) const;
  Views views(const Node& node) const;
  double startOf(size_t item) const {
    return double(item) * (items_.length + items_.spacing) +
           (items_.longer && item > *items_.longer ? items_.excess : 0);
  }
  double lengthOf(size_t item) const { return items_.length + (items_.longer == item ? items_.excess : 0); }

  Axis axis_;
  LazyItems items_;
};

void LazyElement::buildForLayout(Node& node, Content& content) const {
  auto& state = node.state<LazyState>();
  const auto [first, count] = rangeInView(node);
  if (state.known && first == state.first && count == state.count) return;
  const bool scrolledIntoView = state.known;
  state.known = true;
  state.first = first;
  state.count = count;
  // What scrolls into view is just there; only what the list really gained makes an entrance.
  if (scrolledIntoView)
    content.showAtOnce(views(node));
  else
    content.show(views(node));
}

Measured LazyElement::measure(Node&, Proposal proposal) const {
  const double length = items_.count == 0 ? 0 : startOf(items_.count) - items_.spacing;
  if (vertical()) return {{proposal.width.value_or(0), length}};
  return {{length, proposal.height.value_or(0)}};
}

void LazyElement::place(Node& node, Size size) const {
  const size_t first = node.state<LazyState>().first;
  for (const auto& item : node.children) {
    const size_t index = first + size_t(item->slot);
    const double start = startOf(index), length = lengthOf(index);
    item->place(vertical() ? Rect{0, start, size.width, length} : Rect{start, 0, length, size.height});
  }
}

std::pair<size_t, size_t> LazyElement::rangeInView(const Node& node) const {
  const auto along = [this](Point point) { return vertical() ? point.y : point.x; };
  double start = 0;
  const Node* window = node.parent;
  for (const Node* below = &node; window && window->element->kind() != ScrollElement::itsKind;
       below = window, window = window->parent) {
    start -= along(below->frame.origin());
  }
  if (!window || items_.count == 0) return {0, 0};
  start += along(window->element->scrolled(*window));
  const double length = vertical() ? window->frame.height : window->frame.width;
  const double step = items_.length + items_.spacing;
  constexpr double beyond = 2;
  // One that is longer may begin so much sooner.
  const double first = std::max(0.0, std::floor((start - items_.excess) / step) - beyond);
  const double last = std::min(double(items_.count), std::ceil((start + length) / step) + beyond);
  if (last <= first) return {0, 0};
  return {size_t(first), size_t(last - first)};
}

Views LazyElement::views(const Node& node) const {
  const auto& [known, first, count] = node.state<LazyState>();
  Views views;
  for (size_t i = first; i < std::min(first + count, items_.count); ++i) {
    views.push_back(items_.item(i).id(items_.key(i)));
  }
  return views;
}

}  // namespace

View ScrollView(Axis axis, View content) {
  return View(std::make_shared<ScrollElement>(axis), {std::move(content)});
}

View LazyVStack(LazyItems items) {
  return View(std::make_shared<LazyElement>(Axis::vertical, std::move(items)));
}

View LazyHStack(LazyItems items) {
  return View(std::make_shared<LazyElement>(Axis::horizontal, std::move(items)));
}

}  // namespace tarnwick::ui
