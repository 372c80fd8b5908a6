#include "ui/engine/Inspector.h"

#include <cmath>

#include "ui/engine/Drawing.h"
#include "ui/engine/Node.h"

namespace tarnwick::ui {
namespace {

Point center(const Rect& rect) { return {rect.midX(), rect.midY()}; }

void collect(Node& node, const Inspector::Wanted& wanted, std::vector<Inspector::Found>& found) {
  if (const Inspector::Found here(node); wanted(here)) found.push_back(here);
  for (const auto& child : node.leaving) collect(*child, wanted, found);
  for (const auto& child : node.children) collect(*child, wanted, found);
}

}  // namespace

std::string Inspector::Found::kind() const { return std::string(node_->element->kind().name()); }

std::string Inspector::Found::content() const { return node_->element->content(); }

std::string Inspector::Found::id() const { return node_->attributes.key; }

Rect Inspector::Found::frame() const {
  return fromQt(
      node_->transform.mapRect(QRectF(0, 0, node_->presentedSize.width, node_->presentedSize.height)));
}

Rect Inspector::Found::targetFrame() const {
  Point origin;
  for (const Node* n = node_; n; n = n->parent) {
    origin = origin + n->frame.origin();
    if (n->parent) origin = origin - n->parent->element->scrolled(*n->parent);
  }
  return {origin.x, origin.y, node_->frame.width, node_->frame.height};
}

double Inspector::Found::opacity() const {
  double product = 1;
  for (const Node* n = node_; n; n = n->parent) product *= n->opacity;
  return product;
}

double Inspector::Found::blur() const {
  double sum = 0;
  for (const Node* n = node_; n; n = n->parent) sum += n->blurRadius;
  return sum;
}

double Inspector::Found::scale() const { return std::hypot(node_->transform.m11(), node_->transform.m12()); }

Color Inspector::Found::color() const {
  const auto& values = node_->values.presented();
  return values.size() < 4 ? Color{} : Color{values[0], values[1], values[2], values[3]};
}

Font Inspector::Found::font() const { return node_->environment.font; }

bool Inspector::Found::isLeaving() const {
  for (const Node* n = node_; n; n = n->parent) {
    if (n->isLeaving) return true;
  }
  return false;
}

bool Inspector::Found::isMoving() const {
  for (const Node* n = node_; n; n = n->parent) {
    if (n->isMoving()) return true;
  }
  return false;
}

const Interaction* Inspector::Found::interaction() const { return node_->attributes.interaction.get(); }

Inspector::Found Inspector::Found::parent() const { return Found(node_->parent ? *node_->parent : *node_); }

std::vector<Inspector::Found> Inspector::Found::children() const {
  std::vector<Found> result;
  for (const auto& child : node_->children) result.emplace_back(*child);
  return result;
}

std::vector<Inspector::Found> Inspector::all(const Wanted& wanted) const {
  std::vector<Found> found;
  collect(*scene_.root_, wanted, found);
  return found;
}

std::optional<Inspector::Found> Inspector::first(const Wanted& wanted) const {
  const auto found = all(wanted);
  return found.empty() ? std::nullopt : std::optional(found.front());
}

std::optional<Inspector::Found> Inspector::text(const std::string& content) const {
  return first(
      [&](const Found& f) { return !f.isLeaving() && f.kind() == "Text" && f.content() == content; });
}

std::optional<Inspector::Found> Inspector::symbol(const std::string& name) const {
  return first([&](const Found& f) { return !f.isLeaving() && f.kind() == "Symbol" && f.content() == name; });
}

std::optional<Inspector::Found> Inspector::id(const std::string& id) const {
  return first([&](const Found& f) { return !f.isLeaving() && f.id() == id; });
}

std::vector<Inspector::Found> Inspector::kind(const std::string& kind) const {
  return all([&](const Found& f) { return !f.isLeaving() && f.kind() == kind; });
}

std::optional<Inspector::Found> Inspector::control(const std::string& name) const {
  return first([&](const Found& f) {
    return !f.isLeaving() && f.interaction() && f.interaction()->accessibilityName == name;
  });
}

std::vector<std::string> Inspector::texts() const {
  std::vector<std::string> result;
  for (const Found& found : kind("Text")) result.push_back(found.content());
  return result;
}

std::vector<std::string> Inspector::symbols() const {
  std::vector<std::string> result;
  for (const Found& found : kind("Symbol")) result.push_back(found.content());
  return result;
}

void Inspector::hover(const Found& found) { hover(center(found.frame())); }
void Inspector::hover(Point point) { scene_.input().moved(point); }
void Inspector::leave() { scene_.input().left(); }
void Inspector::press(const Found& found, PointerButton button) {
  scene_.input().pressed(center(found.frame()), button);
}
void Inspector::release(Point point, PointerButton button) { scene_.input().released(point, button); }
void Inspector::tap(const Found& found) { tap(center(found.frame())); }

void Inspector::tap(Point point) {
  scene_.input().pressed(point);
  scene_.input().released(point);
}

void Inspector::drag(Point from, Point to) {
  scene_.input().pressed(from);
  scene_.input().moved({(from.x + to.x) / 2, (from.y + to.y) / 2});
  scene_.input().moved(to);
  scene_.input().released(to);
}

bool Inspector::scroll(const Found& found, Point delta) {
  return scene_.input().scrolled(center(found.frame()), delta);
}

bool Inspector::key(Key key, Modifiers modifiers) {
  return scene_.input().key({.key = key, .modifiers = modifiers});
}

std::optional<Inspector::Found> Inspector::focused() const {
  return first([&](const Found& f) { return f.node_ == scene_.input().focused(); });
}

}  // namespace tarnwick::ui
