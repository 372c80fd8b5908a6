#include "ui/engine/Scene.h"

#include <algorithm>

#include "ui/engine/Node.h"
#include "ui/engine/Presenter.h"
#include "ui/engine/Reconciler.h"

namespace tarnwick::ui {
namespace {

/// More damaged places than this are painted as one.
constexpr size_t mostDamage = 6;

int depth(const Node* node) {
  int depth = 0;
  for (; node->parent; node = node->parent) ++depth;
  return depth;
}

void clearMeasures(Node& node) {
  node.measured.clear();
  for (const auto& child : node.children) clearMeasures(*child);
}

void markShown(Node& node) {
  node.isNew = false;
  for (const auto& child : node.children) markShown(*child);
}

}  // namespace

Scene::Scene(Scheduler& scheduler, Size size, View root, double pixelRatio)
    : scheduler_(scheduler), size_(size), pixelRatio_(pixelRatio), input_(*this) {
  committing_ = true;
  ++commitNumber_;
  Reconciler reconciler(*this, std::nullopt, true);
  const View centred = root.frame({.maxWidth = infinity, .maxHeight = infinity});
  root_ = reconciler.build(
      ZStack(UnitPoint::topLeading, {centred, input_.menus_.view(), input_.tooltip_.view()}));
  layOut(reconciler);
  committing_ = false;
}

Scene::~Scene() { root_.reset(); }

void Scene::setPixelRatio(double ratio) {
  if (ratio == pixelRatio_) return;
  pixelRatio_ = ratio;
  const std::function<void(Node&)> apply = [&](Node& node) {
    node.pixelRatio = ratio;
    node.group.reset();
    node.castShadow.reset();
    for (const auto& child : node.children) apply(*child);
    for (const auto& child : node.leaving) apply(*child);
  };
  apply(*root_);
  layOutAnew();
}

void Scene::resize(Size size) {
  if (size == size_) return;
  // Also what is no longer covered.
  addDamage({0, 0, size_.width, size_.height});
  size_ = size;
  layOutAnew();
}

void Scene::layOutAnew() {
  ++commitNumber_;
  Reconciler reconciler(*this, std::nullopt, true);
  layOut(reconciler);
  addDamage({0, 0, size_.width, size_.height});
  requestFrame();
}

void Scene::renew(Node& node) {
  if (node.leaves()) return;
  if (dirty_.empty() && !pendingCommit_) {
    // Outside `withAnimation` nobody tells the end of the change: the turn of the loop does.
    pendingCommit_ = scheduler_.post([this] {
      pendingCommit_ = {};
      commit(std::nullopt);
    });
  }
  dirty_.insert(&node);
}

void Scene::commit(const std::optional<Animation>& animation) {
  if (dirty_.empty() || committing_) return;
  committing_ = true;
  pendingCommit_ = {};
  ++commitNumber_;
  // What has not been seen yet moves from nowhere.
  const bool moves = animation && shown_;
  Reconciler reconciler(*this, moves ? std::optional(animation->delayed(-lead_)) : std::nullopt, false);
  while (!dirty_.empty()) {
    // The outermost first: it may renew the others on the way.
    Node* next = *std::min_element(
        dirty_.begin(), dirty_.end(), [](const Node* a, const Node* b) { return depth(a) < depth(b); });
    dirty_.erase(next);
    if (!next->leaves()) reconciler.renew(*next);
  }
  if (reconciler.needsLayout) layOut(reconciler);
  committing_ = false;

  std::vector<std::function<void()>> appeared;
  appeared.swap(appeared_);
  for (const auto& action : appeared) action();
  requestFrame();
}

void Scene::layOut(Reconciler& reconciler) {
  constexpr int mostRounds = 4;
  for (int round = 0; round < mostRounds; ++round) {
    clearMeasures(*root_);
    root_->place({0, 0, size_.width, size_.height});
    if (!reconciler.buildForLayout(*root_)) break;
  }
  reconciler.settle(*root_);
  reconciler.handOver();
  markShown(*root_);
}

bool Scene::frame() {
  commit(std::nullopt);
  shown_ = true;
  std::vector<std::function<void()>> appeared;
  appeared.swap(appeared_);
  for (const auto& action : appeared) action();

  const double now = scheduler_.uptime();
  Presenter presenter(now, [this](const Rect& rect) { addDamage(rect); });
  presenter.present(*root_, {0, 0, size_.width, size_.height});
  onlyRepeats_ = !presenter.settling();
  finishLeaving(*root_);
  updateTimelines();
  input_.sceneMoved();
  return presenter.moving();
}

bool Scene::isCovered(const Rect& area) const {
  const auto menu = input_.menus_.frame(), tooltip = input_.tooltip_.frame();
  return (menu && menu->intersects(area)) || (tooltip && tooltip->intersects(area));
}

void Scene::focusControl(unsigned long id) {
  const std::function<void(Node&)> search = [&](Node& node) {
    if (node.serial == id) return input_.focus(node, true);
    for (const auto& child : node.children) search(*child);
  };
  search(*root_);
}

void Scene::requestFrame() {
  if (onNeedsFrame) onNeedsFrame();
}

void Scene::scrolled() {
  ++commitNumber_;
  Reconciler reconciler(*this, std::nullopt, false);
  layOut(reconciler);
  requestFrame();
}

void Scene::finishLeaving(Node& node) {
  for (size_t i = 0; i < node.leaving.size();) {
    if (!node.leaving[i]->transition.isMoving()) {
      std::unique_ptr<Node> gone = std::move(node.leaving[i]);
      node.leaving.erase(node.leaving.begin() + std::ptrdiff_t(i));
      node.childrenChanged = true;
      discard(std::move(gone));
    } else {
      ++i;
    }
  }
  for (const auto& child : node.children) finishLeaving(*child);
}

/// Timelines that cannot be seen rest.
void Scene::updateTimelines() {
  for (Node* node : timelineViews_) {
    if (node->visible || node->isNew)
      timelines_.run(*node, *node->element->beat());
    else
      timelines_.stop(*node);
  }
}

void Scene::beat(const std::vector<Node*>& nodes) {
  for (Node* node : nodes) {
    if (!node->leaves()) dirty_.insert(node);
  }
  commit(std::nullopt);
}

void Scene::discard(std::unique_ptr<Node> node) { addDamage(node->bounds); }

/// A node ends.
void Scene::forget(Node& node) {
  dirty_.erase(&node);
  if (timelineViews_.erase(&node)) timelines_.stop(node);
}

void Scene::addDamage(const Rect& rect) {
  if (rect.isEmpty()) return;
  Rect grown = rect;
  // Places that touch become one.
  for (size_t i = 0; i < damage_.size();) {
    if (damage_[i].grownBy(4, 4).intersects(grown)) {
      grown = grown.united(damage_[i]);
      damage_.erase(damage_.begin() + std::ptrdiff_t(i));
      i = 0;
    } else {
      ++i;
    }
  }
  damage_.push_back(grown);
  if (damage_.size() > mostDamage) {
    Rect all;
    for (const Rect& part : damage_) all = all.united(part);
    damage_ = {all};
  }
}

std::vector<Rect> Scene::takeDamage() { return std::exchange(damage_, {}); }

Node* Scene::find(Node& node, const std::string& key) const {
  if (node.attributes.key == key) return &node;
  for (const auto& child : node.children) {
    if (Node* found = find(*child, key)) return found;
  }
  return nullptr;
}

std::vector<Scene::Control> Scene::controls() const {
  std::vector<Control> controls;
  const std::function<void(const Node&)> collect = [&](const Node& node) {
    const auto& interaction = node.attributes.interaction;
    if (!node.visible || (interaction && interaction->disabled)) return;
    if (interaction && interaction->role != Role::none) {
      controls.push_back({node.serial, interaction->role, interaction->accessibilityName,
          interaction->checked, node.presentedInScene(), interaction->action(), interaction->value,
          interaction->takesFocus(), &node == input_.focused()});
    }
    for (const auto& child : node.children) collect(*child);
  };
  collect(*root_);
  return controls;
}

std::optional<Rect> Scene::presentedFrame(const std::string& id) const {
  const Node* node = find(*root_, id);
  if (!node) return std::nullopt;
  return node->presentedInScene();
}

bool Scene::isVisible(const std::string& id) const {
  const Node* node = find(*root_, id);
  return node && node->visible;
}

std::optional<Shape> Scene::presentedClip(const std::string& id) const {
  const Node* node = find(*root_, id);
  // The clip may stand inside effects of the same view.
  while (node && !node->attributes.clip && node->children.size() == 1) node = node->firstChild();
  if (!node || !node->attributes.clip) return std::nullopt;
  Shape shape = *node->attributes.clip;
  shape.animated = node->clip.presented();
  return shape;
}

}  // namespace tarnwick::ui
