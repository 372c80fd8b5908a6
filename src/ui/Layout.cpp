// The elements that only arrange others.
#include <algorithm>
#include <cmath>
#include <functional>

#include "ui/Elements.h"
#include "ui/Node.h"

namespace tarnwick::ui {
namespace {

/// The place of a box of size `inner` in one of size `outer`.
Rect aligned(Size inner, Size outer, UnitPoint align) {
  return {(outer.width - inner.width) * align.x, (outer.height - inner.height) * align.y, inner.width,
          inner.height};
}

double smaller(double a, double b) { return std::min(a, b); }

}  // namespace

bool equal(const Element& a, const Element& b) { return &a == &b || (a.kind() == b.kind() && a.equals(b)); }

Measured Element::measure(Node& node, Proposal proposal) const {
  if (Node* child = node.firstChild()) return child->measure(proposal);
  if (!node.leaving.empty() || kind() == "Dynamic" || kind() == "Group") return {};
  const auto offered = [](std::optional<double> length) {
    return length && std::isfinite(*length) ? *length : length ? 1e6 : 10;
  };
  return {{offered(proposal.width), offered(proposal.height)}};
}

void Element::place(Node& node, Size size) const {
  for (const auto& child : node.children) child->place({0, 0, size.width, size.height});
}

View Group(View content) {
  if (content.isEmpty()) return content;
  return View(std::make_shared<GroupElement>(), {std::move(content)});
}

// Frame

Proposal FrameElement::inner(Proposal proposal) const {
  const auto limit = [](std::optional<double> fixed, std::optional<double> most,
                        std::optional<double> offered) {
    if (fixed) return fixed;
    if (most && offered) return std::optional(smaller(*most, *offered));
    return offered;
  };
  return {limit(options_.width, options_.maxWidth, proposal.width),
          limit(options_.height, options_.maxHeight, proposal.height)};
}

Measured FrameElement::measure(Node& node, Proposal proposal) const {
  Node* child = node.firstChild();
  const Measured content = child ? child->measure(inner(proposal)) : Measured{};
  const auto own = [](std::optional<double> fixed, std::optional<double> most, std::optional<double> offered,
                      double inside) {
    if (fixed) return *fixed;
    if (most && offered) return std::max(inside, smaller(*most, *offered));
    return inside;
  };
  const Size size{own(options_.width, options_.maxWidth, proposal.width, content.size.width),
                  own(options_.height, options_.maxHeight, proposal.height, content.size.height)};
  Measured answer{size};
  if (content.baseline) answer.baseline = *content.baseline + aligned(content.size, size, options_.align).y;
  return answer;
}

void FrameElement::place(Node& node, Size size) const {
  Node* child = node.firstChild();
  if (!child) return;
  const Size content = child->measure(inner({size.width, size.height})).size;
  child->place(aligned(content, size, options_.align), options_.align);
}

// Padding

Measured PaddingElement::measure(Node& node, Proposal proposal) const {
  Node* child = node.firstChild();
  if (!child) return {};
  const double dx = inset(Edge::leading) + inset(Edge::trailing), dy = inset(Edge::top) + inset(Edge::bottom);
  const auto less = [](std::optional<double> length, double by) {
    return length ? std::optional(std::max(0.0, *length - by)) : length;
  };
  Measured answer = child->measure({less(proposal.width, dx), less(proposal.height, dy)});
  answer.size = {answer.size.width + dx, answer.size.height + dy};
  if (answer.baseline) *answer.baseline += inset(Edge::top);
  return answer;
}

void PaddingElement::place(Node& node, Size size) const {
  if (Node* child = node.firstChild()) {
    child->place({inset(Edge::leading), inset(Edge::top),
                  std::max(0.0, size.width - inset(Edge::leading) - inset(Edge::trailing)),
                  std::max(0.0, size.height - inset(Edge::top) - inset(Edge::bottom))});
  }
}

// Aspect ratio

Measured AspectRatioElement::measure(Node& node, Proposal proposal) const {
  if (!node.firstChild()) return {};
  if (!proposal.width && !proposal.height) return node.firstChild()->measure(proposal);
  const double width = proposal.width.value_or(infinity), height = proposal.height.value_or(infinity);
  const double fitted = smaller(width, height * ratio_);
  return {{fitted, fitted / ratio_}};
}

// Background and overlay

Node* LayerElement::main(Node& node) const { return node.child(side_ == Side::behind ? 1 : 0); }

Measured LayerElement::measure(Node& node, Proposal proposal) const {
  Node* child = main(node);
  return child ? child->measure(proposal) : Measured{};
}

void LayerElement::place(Node& node, Size size) const {
  for (const auto& child : node.children) {
    if (child.get() == main(node)) {
      child->place({0, 0, size.width, size.height});
    } else {
      child->place(aligned(child->measure({size.width, size.height}).size, size, align_), align_);
    }
  }
}

// Stacks

struct StackElement::Share {
  Node* node;
  Measured measured;
  double least, most;
};

/// Offers what is left in equal parts, the least flexible child first, so that the flexible ones get the
/// rest. Spacers come last: they take what nobody else wants.
std::vector<StackElement::Share> StackElement::shares(Node& node, Proposal proposal) const {
  const bool horizontal = axis_ == Axis::horizontal;
  const auto along = [=](Size size) { return horizontal ? size.width : size.height; };
  const auto offer = [&](std::optional<double> length) {
    return horizontal ? Proposal{length, proposal.height} : Proposal{proposal.width, length};
  };
  std::vector<Share> shares;
  for (const auto& child : node.children) shares.push_back({child.get(), {}, 0, 0});

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
  const auto isSpacer = [](const Share* share) { return share->node->element->kind() == "Spacer"; };
  const auto spacers = std::stable_partition(order.begin(), order.end(), std::not_fn(isSpacer));
  std::stable_sort(order.begin(), spacers,
                   [](const Share* a, const Share* b) { return a->most - a->least < b->most - b->least; });
  // What the inflexible rest needs at the least is kept for it.
  double reserved = 0;
  for (const Share* share : order) reserved += share->least;
  auto waiting = spacers - order.begin();
  for (Share* share : order) {
    if (waiting == 0) waiting = order.end() - spacers;
    reserved -= share->least;
    const double part = std::max(share->least, std::min((left) / double(waiting), left - reserved));
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
    if (share.node->element->kind() == "Spacer") afterSpacer = true;
    const double along = afterSpacer ? 1 : 0;
    if (horizontal) {
      double y = (size.height - part.height) * across;
      if (options_.align == Align::firstTextBaseline && share.measured.baseline) {
        y = baseline - *share.measured.baseline;
      }
      share.node->place({position, y, part.width, part.height}, {along, across});
    } else {
      share.node->place({(size.width - part.width) * across, position, part.width, part.height},
                        {across, along});
    }
    position += (horizontal ? part.width : part.height) + options_.spacing;
  }
}

View HStack(StackOptions options, ViewList children) {
  return View(std::make_shared<StackElement>(Axis::horizontal, options), std::move(children.views));
}
View VStack(StackOptions options, ViewList children) {
  return View(std::make_shared<StackElement>(Axis::vertical, options), std::move(children.views));
}

Measured SpacerElement::measure(Node& node, Proposal proposal) const {
  const bool vertical = node.parent && node.parent->element->kind() == "VStack";
  const double length = (vertical ? proposal.height : proposal.width).value_or(0);
  const double finite = std::isfinite(length) ? length : 1e6;
  return {vertical ? Size{0, finite} : Size{finite, 0}};
}

View Spacer() { return View(std::make_shared<SpacerElement>()); }

// Layers of equal rank

Measured ZStackElement::measure(Node& node, Proposal proposal) const {
  Measured answer;
  for (const auto& child : node.children) {
    const Measured part = child->measure(proposal);
    answer.size = {std::max(answer.size.width, part.size.width),
                   std::max(answer.size.height, part.size.height)};
    if (!answer.baseline) answer.baseline = part.baseline;
  }
  return answer;
}

void ZStackElement::place(Node& node, Size size) const {
  for (const auto& child : node.children) {
    child->place(aligned(child->measure({size.width, size.height}).size, size, align_), align_);
  }
}

View ZStack(UnitPoint align, ViewList children) {
  return View(std::make_shared<ZStackElement>(align), std::move(children.views));
}

}  // namespace tarnwick::ui
