#include <algorithm>
#include <cmath>
#include <functional>

#include "ui/Description.h"
#include "ui/View.h"
#include "ui/engine/Node.h"

namespace tarnwick::ui {
namespace {

class StackElement : public Element {
 public:
  StackElement(Axis axis, StackOptions options) : axis_(axis), options_(options) {}
  static constexpr ElementKind horizontalKind{"HStack"}, verticalKind{"VStack"};
  const ElementKind& kind() const override {
    return axis_ == Axis::horizontal ? horizontalKind : verticalKind;
  }
  bool equals(const Element& other) const override {
    const auto& same = static_cast<const StackElement&>(other);
    return same.options_.spacing == options_.spacing && same.options_.align == options_.align;
  }
  Measured measure(Node& node, Proposal proposal) const override;
  void place(Node& node, Size size) const override;

 private:
  struct Share;
  std::vector<Share> shares(Node& node, Proposal proposal) const;
  Axis axis_;
  StackOptions options_;
};

class SpacerElement : public Element {
 public:
  static constexpr ElementKind itsKind{"Spacer"};
  const ElementKind& kind() const override { return itsKind; }
  bool equals(const Element&) const override { return true; }
  Measured measure(Node& node, Proposal proposal) const override;
};

/// Its stack knows it by its kind.
class PriorityElement : public Element {
 public:
  static constexpr ElementKind itsKind{"Priority"};
  const ElementKind& kind() const override { return itsKind; }
  bool equals(const Element&) const override { return true; }
};

struct StackElement::Share {
  Node* node;
  Measured measured;
  double least, most;
};

/// Offers what is left in equal parts, the least flexible child first, so that the flexible ones get the
/// rest. Those with priority come before, and are offered all; spacers come last: they take what nobody else
/// wants.
std::vector<StackElement::Share> StackElement::shares(Node& node, Proposal proposal) const {
  const bool horizontal = axis_ == Axis::horizontal;
  const auto along = [=](Size size) { return horizontal ? size.width : size.height; };
  const auto offer = [&](std::optional<double> length) {
    return horizontal ? Proposal{length, proposal.height} : Proposal{proposal.width, length};
  };
  std::vector<Share> shares;
  for (const auto& child : node.children) {
    if (!child->element->isNothing(*child)) shares.push_back({child.get(), {}, 0, 0});
  }

  const std::optional<double> available = horizontal ? proposal.width : proposal.height;
  if (!available) {
    for (Share& share : shares) share.measured = share.node->measure(offer(std::nullopt));
    return shares;
  }
  double left = *available - options_.spacing * std::max(0.0, double(shares.size()) - 1);
  std::vector<Share*> order;
  for (Share& share : shares) {
    share.least = along(share.node->measure(offer(0)).size);
    share.most = along(share.node->measure(offer(1e6)).size);
    order.push_back(&share);
  }
  const auto isSpacer = [](const Share* share) {
    return share->node->element->kind() == SpacerElement::itsKind;
  };
  const auto spacers = std::stable_partition(order.begin(), order.end(), std::not_fn(isSpacer));
  std::stable_sort(order.begin(), spacers,
      [](const Share* a, const Share* b) { return a->most - a->least < b->most - b->least; });
  const auto hasPriority = [](const Share* share) {
    return share->node->element->kind() == PriorityElement::itsKind;
  };
  std::stable_partition(order.begin(), spacers, hasPriority);
  // What the inflexible rest needs at the least is kept for it.
  double reserved = 0;
  for (const Share* share : order) reserved += share->least;
  auto waiting = spacers - order.begin();
  for (Share* share : order) {
    if (waiting == 0) waiting = order.end() - spacers;
    reserved -= share->least;
    const double fair = hasPriority(share) ? left : left / double(waiting);
    const double part = std::max(share->least, std::min(fair, left - reserved));
    share->measured = share->node->measure(offer(std::max(0.0, part)));
    left -= along(share->measured.size);
    --waiting;
  }
  return shares;
}

Measured StackElement::measure(Node& node, Proposal proposal) const {
  const bool horizontal = axis_ == Axis::horizontal;
  Size size;
  std::optional<double> baseline;
  double below = 0;
  const std::vector<Share> parts = shares(node, proposal);
  for (const Share& share : parts) {
    const Size part = share.measured.size;
    if (horizontal) {
      size = {size.width + part.width, std::max(size.height, part.height)};
    } else {
      if (!baseline && share.measured.baseline) baseline = size.height + *share.measured.baseline;
      size = {std::max(size.width, part.width), size.height + part.height};
    }
    if (horizontal && share.measured.baseline) {
      baseline = std::max(baseline.value_or(0), *share.measured.baseline);
      below = std::max(below, part.height - *share.measured.baseline);
    }
  }
  const double gaps = options_.spacing * std::max(0.0, double(parts.size()) - 1);
  (horizontal ? size.width : size.height) += gaps;
  if (horizontal && options_.align == Align::firstTextBaseline && baseline) {
    size.height = std::max(size.height, *baseline + below);
  }
  return {size, baseline};
}

void StackElement::place(Node& node, Size size) const {
  const bool horizontal = axis_ == Axis::horizontal;
  const std::vector<Share> parts = shares(node, {size.width, size.height});
  double baseline = 0;
  for (const Share& share : parts) baseline = std::max(baseline, share.measured.baseline.value_or(0));

  bool afterSpacer = false;
  double position = 0;
  for (const Share& share : parts) {
    const Size part = share.measured.size;
    double across = 0.5;
    if (options_.align == Align::leading || options_.align == Align::top) across = 0;
    if (options_.align == Align::trailing || options_.align == Align::bottom) across = 1;
    if (share.node->element->kind() == SpacerElement::itsKind) afterSpacer = true;
    const double along = afterSpacer ? 1 : 0;
    if (horizontal) {
      double y = (size.height - part.height) * across;
      if (options_.align == Align::firstTextBaseline && share.measured.baseline) {
        y = baseline - *share.measured.baseline;
      }
      share.node->place({position, y, part.width, part.height}, {along, across});
    } else {
      share.node->place(
          {(size.width - part.width) * across, position, part.width, part.height}, {across, along});
    }
    position += (horizontal ? part.width : part.height) + options_.spacing;
  }
}

Measured SpacerElement::measure(Node& node, Proposal proposal) const {
  const bool vertical = node.parent && node.parent->element->kind() == StackElement::verticalKind;
  const double length = (vertical ? proposal.height : proposal.width).value_or(0);
  const double finite = std::isfinite(length) ? length : 1e6;
  return {vertical ? Size{0, finite} : Size{finite, 0}};
}

}  // namespace

View HStack(StackOptions options, ViewList children) {
  return View(std::make_shared<StackElement>(Axis::horizontal, options), std::move(children.views));
}
View VStack(StackOptions options, ViewList children) {
  return View(std::make_shared<StackElement>(Axis::vertical, options), std::move(children.views));
}

View View::prioritized() const { return inside(std::make_shared<PriorityElement>()); }

View Spacer() { return View(std::make_shared<SpacerElement>()); }

}  // namespace tarnwick::ui
