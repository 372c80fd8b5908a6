#include "ui/elements/Scrolling.h"

#include <algorithm>
#include <cmath>

#include "ui/engine/Node.h"

namespace tarnwick::ui {

View ScrollView(Axis axis, View content) {
  return View(std::make_shared<ScrollElement>(axis), {std::move(content)});
}

View LazyVStack(LazyRows rows) { return View(std::make_shared<LazyElement>(std::move(rows))); }

Measured ScrollElement::measure(Node& node, Proposal proposal) const {
  Node* content = node.firstChild();
  const Size own = content ? content->measure({}).size : Size{};
  return {{proposal.width.value_or(own.width), proposal.height.value_or(own.height)}};
}

void ScrollElement::place(Node& node, Size size) const {
  Node* content = node.firstChild();
  if (!content) return;
  const bool vertical = axis_ == Axis::vertical;
  Size wanted = content
                    ->measure({vertical ? std::optional(size.width) : std::nullopt,
                               vertical ? std::nullopt : std::optional(size.height)})
                    .size;
  (vertical ? wanted.width : wanted.height) = vertical ? size.width : size.height;
  content->place({0, 0, wanted.width, wanted.height});
  scroll(node, {});
}

bool ScrollElement::scroll(Node& node, Point delta) {
  const Node* content = node.firstChild();
  if (!content) return false;
  const bool vertical = static_cast<const ScrollElement&>(*node.element).axis_ == Axis::vertical;
  const Point before = node.scroll;
  const auto limited = [](double value, double whole, double window) {
    return std::clamp(value, 0.0, std::max(0.0, whole - window));
  };
  if (vertical)
    node.scroll.y = limited(before.y - delta.y, content->frame.height, node.frame.height);
  else
    node.scroll.x = limited(before.x - delta.x, content->frame.width, node.frame.width);
  return node.scroll != before;
}

Measured LazyElement::measure(Node&, Proposal proposal) const {
  const double count = double(rows_.count);
  const double height = count == 0 ? 0 : count * rows_.rowHeight + (count - 1) * rows_.spacing;
  return {{proposal.width.value_or(0), height}};
}

void LazyElement::place(Node& node, Size size) const {
  for (const auto& row : node.children) {
    const double y = double(node.firstRow + size_t(row->slot)) * (rows_.rowHeight + rows_.spacing);
    row->place({0, y, size.width, rows_.rowHeight});
  }
}

std::pair<size_t, size_t> LazyElement::rangeInView(const Node& node) const {
  double top = 0;
  const Node* window = node.parent;
  for (const Node* below = &node; window && window->element->kind() != ScrollElement::itsKind;
       below = window, window = window->parent) {
    top -= below->frame.y;
  }
  if (!window || rows_.count == 0) return {0, 0};
  top += window->scroll.y;
  const double step = rows_.rowHeight + rows_.spacing;
  constexpr double beyond = 2;
  const double first = std::max(0.0, std::floor(top / step) - beyond);
  const double last = std::min(double(rows_.count), std::ceil((top + window->frame.height) / step) + beyond);
  if (last <= first) return {0, 0};
  return {size_t(first), size_t(last - first)};
}

std::vector<View> LazyElement::build(size_t first, size_t count) const {
  std::vector<View> views;
  for (size_t i = first; i < std::min(first + count, rows_.count); ++i) {
    views.push_back(rows_.row(i).id(rows_.key(i)));
  }
  return views;
}

}  // namespace tarnwick::ui
