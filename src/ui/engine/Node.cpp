#include "ui/engine/Node.h"

#include <algorithm>
#include <cmath>

#include "ui/engine/Drawing.h"
#include "ui/engine/Scene.h"

namespace tarnwick::ui {

Node::Node(Scene& itsScene, Node* itsParent, const View& view)
    : scene(itsScene),
      parent(itsParent),
      pixelRatio(itsScene.pixelRatio()),
      state_(view.description().element->makeState()) {}

Node::~Node() { scene.forget(*this); }

void Node::renew() { scene.renew(*this); }

Measured Node::measure(Proposal proposal) {
  for (const auto& [asked, answer] : measured) {
    if (asked == proposal) return answer;
  }
  const Measured answer = element->measure(*this, proposal);
  measured.emplace_back(proposal, answer);
  return answer;
}

void Node::place(const Rect& rect, UnitPoint newPin) {
  // On whole pixels: edges and text stay crisp.
  const auto snapped = [this](double v) { return std::round(v * pixelRatio) / pixelRatio; };
  frame = {snapped(rect.x), snapped(rect.y), rect.width, rect.height};
  pin = newPin;
  element->place(*this, rect.size());
}

Node* Node::child(int wanted) const {
  for (const auto& child : children) {
    if (child->slot == wanted) return child.get();
  }
  return nullptr;
}

Rect Node::presentedInScene() const {
  return fromQt(transform.mapRect(QRectF(0, 0, presentedSize.width, presentedSize.height)));
}

bool Node::isMoving() const { return std::ranges::any_of(motions(), &AnimatedValues::isMoving); }

bool Node::isSettling() const { return !std::ranges::all_of(motions(), &AnimatedValues::onlyRepeats); }

bool Node::leaves() const {
  for (const Node* node = this; node; node = node->parent) {
    if (node->isLeaving) return true;
  }
  return false;
}

bool Node::arrives() const {
  for (const Node* node = this; node; node = node->parent) {
    if (node->transition.isMoving()) return true;
  }
  return false;
}

std::vector<double> numbers(const Effects& e) {
  return {e.opacity, e.blur, e.brightness, e.scaleX, e.scaleY, e.rotation, e.offset.x, e.offset.y};
}

std::vector<double> shadowNumbers(const std::vector<Attributes::Shadow>& shadows) {
  std::vector<double> result;
  for (const auto& [color, radius, offset] : shadows) {
    result.insert(
        result.end(), {color.red, color.green, color.blue, color.alpha, radius, offset.x, offset.y});
  }
  return result;
}

std::vector<Attributes::Shadow> shadowsOf(const std::vector<double>& numbers) {
  constexpr size_t perShadow = 7;
  std::vector<Attributes::Shadow> shadows;
  for (size_t i = 0; i + perShadow <= numbers.size(); i += perShadow) {
    const double* n = numbers.data() + i;
    shadows.push_back({{n[0], n[1], n[2], n[3]}, n[4], {n[5], n[6]}});
  }
  return shadows;
}

Effects effectsOf(const std::vector<double>& n, UnitPoint anchor) {
  if (n.empty()) return {};
  return {.opacity = n[0],
      .blur = n[1],
      .brightness = n[2],
      .scaleX = n[3],
      .scaleY = n[4],
      .rotation = n[5],
      .offset = {n[6], n[7]},
      .anchor = anchor};
}

}  // namespace tarnwick::ui
