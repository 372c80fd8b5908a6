#include "ui/engine/Reconciler.h"

#include <QtGlobal>
#include <algorithm>
#include <set>

namespace tarnwick::ui {
namespace {

const std::vector<double> atRest = numbers(Effects{});

/// A view that changes what it reads itself may be made anew this often in one commit before it is left as it
/// is.
constexpr int mostRenewals = 8;

/// A bounce takes this long.
constexpr Animation bounceMotion = linear(0.45);

std::string identityOf(const View& view, int slot) {
  const Attributes& attributes = view.description().attributes;
  std::string identity = attributes.key.empty() ? std::to_string(slot) : "#" + attributes.key;
  if (attributes.match) identity += "=" + attributes.match->id;
  return (identity += ':') += view.description().element->kind().name();
}

Environment inherit(Environment environment, const Attributes& attributes) {
  if (attributes.font) environment.font = *attributes.font;
  if (attributes.foreground) environment.foreground = *attributes.foreground;
  if (attributes.truncation) environment.truncation = *attributes.truncation;
  if (attributes.contentTransition) environment.contentTransition = *attributes.contentTransition;
  environment.monospacedDigits |= attributes.monospacedDigits;
  return environment;
}

/// The transition of a view: its own, or that of the one view that it only wraps.
const Transition* transitionOf(const Node& node) {
  if (node.attributes.transition) return &*node.attributes.transition;
  // What is behind a window does not stand for it.
  if (node.children.size() == 1 && !node.element->clips()) return transitionOf(*node.children.front());
  return nullptr;
}

/// Whether a view around it makes its entrance in the same commit. What is inside just comes along, unless it
/// has a motion of its own.
bool comesAlong(const Node& node) {
  for (const Node* n = node.parent; n && n->isNew; n = n->parent) {
    if (n->attributes.transition) return true;
  }
  return false;
}

std::vector<double> numbersOf(const Rect& rect) { return {rect.x, rect.y, rect.width, rect.height}; }

/// Where a node's corner is in the scene once everything has come to rest.
Point targetOrigin(const Node& node) {
  Point origin;
  for (const Node* n = &node; n; n = n->parent) {
    origin = origin + n->frame.origin();
    if (n->parent) origin = origin - n->parent->element->scrolled(*n->parent);
  }
  return origin;
}

/// Where the corner of a node that has not been presented yet sets out from, effects left aside.
Point presentedOrigin(const Node& node) {
  Point origin;
  for (const Node* n = &node; n; n = n->parent) {
    origin = origin + n->presentedFrame().origin();
    if (n->parent) origin = origin - n->parent->element->scrolled(*n->parent);
  }
  return origin;
}

}  // namespace

/// Puts what an element shows into its node.
class Reconciler::NodeContent : public Content {
 public:
  NodeContent(Reconciler& reconciler, Node& node, const Context& context)
      : reconciler_(reconciler), node_(node), context_(context) {}

  void show(const Views& views) override {
    reconciler_.updateChildren(node_, views, context_);
    shown = true;
  }
  void showAtOnce(const Views& views) override {
    Context context = context_;
    context.transitions = false;
    reconciler_.updateChildren(node_, views, context);
    shown = true;
  }

  bool shown = false;

 private:
  Reconciler& reconciler_;
  Node& node_;
  const Context& context_;
};

Reconciler::Reconciler(Scene& scene, std::optional<Animation> animation, bool first)
    : scene_(scene), animation_(std::move(animation)), first_(first), now_(scene.scheduler_.uptime()) {}

std::unique_ptr<Node> Reconciler::build(const View& view) {
  auto root = std::make_unique<Node>(scene_, nullptr, view);
  update(*root, view, {{}, animation_, !first_});
  return root;
}

Reconciler::Context Reconciler::contextInside(const Node& node) const {
  return {node.environment, node.commitNumber == scene_.commitNumber_ ? node.commitAnimation : animation_,
      !first_};
}

void Reconciler::update(Node& node, const View& view, Context context) {
  const Description& description = view.description();
  const Attributes& attributes = description.attributes;
  const std::optional<Animation> inherited = context.animation;
  if (!node.isNew) {
    const auto& before = node.attributes.animations;
    for (size_t i = 0; i < attributes.animations.size() && i < before.size(); ++i) {
      if (!(attributes.animations[i].second == before[i].second))
        context.animation = attributes.animations[i].first;
    }
  }
  node.commitAnimation = context.animation;
  node.frameAnimation = inherited ? inherited : context.animation;
  node.commitNumber = scene_.commitNumber_;

  const Environment environment = inherit(context.environment, attributes);
  if (!(environment == node.environment)) {
    needsLayout |= !(environment.font == node.environment.font) ||
                   environment.monospacedDigits != node.environment.monospacedDigits;
    node.environment = environment;
    node.needsDraw = true;
  }
  context.environment = environment;

  if (!node.element || !equal(*node.element, *description.element)) {
    const std::shared_ptr<const Element> before = node.element;
    node.element = description.element;
    node.needsDraw = true;
    needsLayout |= !before || description.element->affectsLayout(*before);
    if (before && context.animation && description.element->draws() &&
        environment.contentTransition != ContentTransition::identity) {
      node.previous = before;
      node.previousSize = node.frame.size();
      node.change.jump({0});
      node.change.set({1}, *context.animation, now_);
    }
  }
  const auto settings = description.element->animatedValues(environment);
  node.values.set(settings, context.animation, now_);
  node.effects.set(numbers(attributes.effects), context.animation, now_);
  node.shadows.set(shadowNumbers(attributes.shadows), context.animation, now_);
  if (attributes.clip) node.clip.set(attributes.clip->animated, context.animation, now_);
  if (attributes.bounce) {
    const bool hops =
        node.isNew ? attributes.bounce->onAppear
                   : node.attributes.bounce && !(node.attributes.bounce->value == attributes.bounce->value);
    if (hops) {
      node.bounce.jump({0});
      node.bounce.set({1}, bounceMotion, now_);
    }
  }
  const bool appears = node.isNew && attributes.onAppear;
  node.description = view.shared();
  node.attributes = attributes;
  if (appears) scene_.appeared_.push_back(attributes.onAppear);
  if (node.isNew && attributes.match) newMatches_.push_back(node);

  updateContent(node, context);
}

void Reconciler::updateContent(Node& node, const Context& context) {
  if (node.element->beat())
    scene_.timelineViews_.insert(&node);
  else if (scene_.timelineViews_.erase(&node))
    scene_.timelines_.stop(node);
  scene_.dirty_.erase(&node);
  NodeContent content(*this, node, context);
  ReadScope reads([&node] { node.renew(); });
  node.element->build(node, node.description->children, content);
  node.reads = reads.subscription();
}

void Reconciler::renew(Node& node) {
  node.renewals = node.commitNumber == scene_.commitNumber_ ? node.renewals + 1 : 0;
  if (node.renewals > mostRenewals) {
    if (node.renewals == mostRenewals + 1)
      qWarning("A view (%s) changes what it has read each time that it is made anew", node.identity.c_str());
    return;
  }
  ++scene_.renewals_;
  node.commitAnimation = node.frameAnimation = animation_;
  node.commitNumber = scene_.commitNumber_;
  updateContent(node, {node.environment, animation_, true});
}

void Reconciler::updateChildren(Node& node, const Views& views, const Context& context) {
  std::map<std::string, std::unique_ptr<Node>> before;
  std::vector<Node*> order;
  for (auto& child : node.children) {
    order.push_back(child.get());
    before.emplace(child->identity, std::move(child));
  }
  node.children.clear();

  std::set<std::string> taken;
  int slot = 0, unkeyed = 0;
  for (const View& view : views) {
    const int place = slot++;
    const bool counts = view.isEmpty() || view.description().attributes.key.empty();
    const int number = node.element->hasFixedSlots() ? place : counts ? unkeyed++ : 0;
    if (view.isEmpty()) continue;
    std::string identity = identityOf(view, number);
    // Two siblings of one key: the later one is told apart by its place.
    if (!taken.insert(identity).second) taken.insert(identity += "/" + std::to_string(place));
    std::unique_ptr<Node> child;
    if (const auto found = before.find(identity); found != before.end()) {
      child = std::move(found->second);
      before.erase(found);
      child->slot = place;
      update(*child, view, context);
    } else {
      const auto gone = std::find_if(node.leaving.begin(), node.leaving.end(),
          [&](const auto& leaving) { return leaving->identity == identity; });
      if (gone != node.leaving.end()) {
        child = std::move(*gone);
        node.leaving.erase(gone);
        child->slot = place;
        revive(*child, context);
        update(*child, view, context);
      } else {
        child = std::make_unique<Node>(scene_, &node, view);
        child->identity = identity;
        child->slot = place;
        update(*child, view, context);
        insert(*child, context);
      }
      needsLayout = true;
      node.childrenChanged = true;
    }
    node.children.push_back(std::move(child));
  }

  for (Node* old : order) {
    const auto found =
        std::find_if(before.begin(), before.end(), [&](const auto& e) { return e.second.get() == old; });
    if (found == before.end()) continue;
    const Node* successor = nullptr;
    for (const auto& child : node.children) {
      if (child->slot == old->slot && child->isNew) successor = child.get();
    }
    needsLayout = true;
    node.childrenChanged = true;
    remove(std::move(found->second), context, successor);
    before.erase(found);
  }
}

void Reconciler::insert(Node& node, const Context& context) {
  if (first_ || !context.transitions) return;
  const Transition* own = node.attributes.transition ? &*node.attributes.transition : nullptr;
  if (own) {
    const auto& animation = own->insertionAnimation ? own->insertionAnimation : context.animation;
    if (!animation || (!own->insertionAnimation && comesAlong(node))) return;
    node.transition.jump(numbers(own->insertion));
    node.transition.set(atRest, animation, now_);
    node.transitionAnchor = own->insertion.anchor;
  } else if (!node.parent->isNew && context.animation && !transitionOf(node)) {
    node.transition.jump(numbers({.opacity = 0}));
    node.transition.set(atRest, context.animation, now_);
  }
}

void Reconciler::revive(Node& node, const Context& context) {
  node.isLeaving = false;
  scene_.addDamage(node.bounds);
  const Transition* own = transitionOf(node);
  const auto& animation = own && own->insertionAnimation ? own->insertionAnimation : context.animation;
  if (node.transition.target().empty()) node.transition.jump(atRest);
  node.transition.set(atRest, animation, now_);
}

void Reconciler::remove(std::unique_ptr<Node> node, const Context& context, const Node* successor) {
  const Transition* transition = transitionOf(*node);
  if (successor) {
    const Transition* next = transitionOf(*successor);
    if (next && next->governsPredecessor) transition = next;
  }
  static const Transition fade = Transition::opacity();
  const Transition& leaving = transition ? *transition : fade;
  const auto& animation = leaving.removalAnimation ? leaving.removalAnimation : context.animation;
  const bool goesAtOnce = !animation || !context.transitions || node->bounds.isEmpty();
  noteMatches(*node, *node, transition != nullptr);
  if (goesAtOnce) {
    scene_.discard(std::move(node));
    return;
  }
  if (node->transition.target().empty()) node->transition.jump(atRest);
  node->transition.set(numbers(leaving.removal), animation, now_);
  node->transitionAnchor = leaving.removal.anchor;
  node->isLeaving = true;
  // It goes behind its siblings at once.
  scene_.addDamage(node->bounds);
  Node& parent = *node->parent;
  parent.leaving.push_back(std::move(node));
}

void Reconciler::noteMatches(Node& node, Node& root, bool hasTransition) {
  if (node.attributes.match && !node.isNew) {
    const Size size = node.presentedFrame().size();
    const QRectF rect = node.transform.mapRect(QRectF(0, 0, size.width, size.height));
    handovers_.emplace_back(*node.attributes.match,
        Handover{node, root, {rect.x(), rect.y(), rect.width(), rect.height()}, hasTransition});
  }
  for (const auto& child : node.children) noteMatches(*child, root, hasTransition);
}

/// Ends the leaving of a view whose thing has moved over to another one.
void Reconciler::takeAway(Node& root) {
  auto& siblings = root.parent->leaving;
  const auto gone =
      std::find_if(siblings.begin(), siblings.end(), [&](const auto& s) { return s.get() == &root; });
  if (gone == siblings.end()) return;
  std::unique_ptr<Node> old = std::move(*gone);
  siblings.erase(gone);
  scene_.discard(std::move(old));
}

void Reconciler::handOver() {
  for (Node* node : newMatches_) {
    if (!node) continue;
    const auto found = std::find_if(handovers_.begin(), handovers_.end(),
        [&](const auto& entry) { return entry.first == *node->attributes.match; });
    if (found == handovers_.end() || !node->commitAnimation) continue;
    const Handover handover = found->second;
    // From the old view's place in the scene, seen from the new parent as it is presented now.
    const QPointF corner =
        node->parent->contentTransform.inverted().map(QPointF(handover.rect.x, handover.rect.y));
    const bool parentShown = !node->parent->isNew || node->parent->visible;
    const Point start =
        parentShown ? Point{corner.x(), corner.y()} : handover.rect.origin() - presentedOrigin(*node->parent);
    node->frameMotion.startFrom(
        {start.x, start.y, handover.rect.width, handover.rect.height}, node->commitAnimation, now_);
    if (!handover.hasTransition) {
      // The thing itself moves over: nothing fades.
      for (Node* n = node; n && n->isNew; n = n->parent) {
        if (!n->attributes.transition && !n->transition.target().empty()) n->transition.jump(atRest);
        if (n->attributes.transition) break;
      }
      if (handover.root) takeAway(*handover.root);
    } else if (handover.root && handover.root->isLeaving) {
      Node& old = *handover.leaving;
      const Point place = targetOrigin(*node) - targetOrigin(*old.parent);
      old.frameMotion.set(
          numbersOf({place.x, place.y, node->frame.width, node->frame.height}), node->commitAnimation, now_);
    }
    handovers_.erase(found);
  }
  newMatches_.clear();
}

bool Reconciler::buildForLayout(Node& node) {
  const Context context = contextInside(node);
  NodeContent content(*this, node, context);
  ReadScope reads([&node] { node.renew(); });
  node.element->buildForLayout(node, content);
  bool built = content.shown;
  if (built) node.reads = reads.subscription();
  for (const auto& child : node.children) built |= buildForLayout(*child);
  return built;
}

void Reconciler::settle(Node& node) {
  const bool visited = node.commitNumber == scene_.commitNumber_;
  const std::optional<Animation>& animation = visited ? node.frameAnimation : animation_;
  const std::vector<double> target = numbersOf(node.frame);
  const Node* parent = node.parent;
  if (!node.isNew) {
    node.frameMotion.set(target, animation, now_);
  } else {
    node.frameMotion.jump(target);
    if (parent && !parent->isNew && !first_) {
      // Into a box that is on its way to another size: at the place that it will have, seen from the pinned
      // side.
      const Size now = parent->presentedFrame().size(), then = parent->frame.size();
      const Rect start = node.frame.movedBy(
          {node.pin.x * (now.width - then.width), node.pin.y * (now.height - then.height)});
      if (!(start == node.frame)) node.frameMotion.startFrom(numbersOf(start), animation, now_);
    }
  }
  for (const auto& child : node.leaving) {
    const Point growth{child->pin.x * (node.frame.width - node.oldSize.width),
        child->pin.y * (node.frame.height - node.oldSize.height)};
    child->frame = child->frame.movedBy(growth);
    child->frameMotion.set(numbersOf(child->frame), animation, now_);
  }
  node.oldSize = node.frame.size();
  for (const auto& child : node.children) settle(*child);
}

}  // namespace tarnwick::ui
