#pragma once
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "ui/engine/Node.h"
#include "ui/engine/Scene.h"

namespace tarnwick::ui {

/// Brings the live nodes in line with a new description: one commit.
class Reconciler {
 public:
  Reconciler(Scene& scene, std::optional<Animation> animation, bool first);

  /// The root of the tree.
  std::unique_ptr<Node> build(const View& view);
  /// Has the node's element build its content again.
  void renew(Node& node);
  /// Builds what depends on the layout. @return true when there was something to build.
  bool buildForLayout(Node& node);
  /// After the layout: sends every node to its new frame.
  void settle(Node& node);
  /// Sends views that take over from others on their way.
  void handOver();

  bool needsLayout = false;

 private:
  struct Context {
    Environment environment;
    std::optional<Animation> animation;
    bool transitions;
  };
  struct Handover {
    WeakNode leaving;
    /// What vanishes as a whole, with `leaving` in it; both may be gone already.
    WeakNode root;
    Rect rect;
    bool hasTransition;
  };

  class NodeContent;

  void update(Node& node, const View& view, Context context);
  void updateChildren(Node& node, const Views& views, const Context& context);
  void updateContent(Node& node, const Context& context);
  void insert(Node& node, const Context& context);
  void remove(std::unique_ptr<Node> node, const Context& context, const Node* successor);
  void revive(Node& node, const Context& context);
  void takeAway(Node& root);
  void noteMatches(Node& node, Node& root, bool hasTransition);
  Context contextInside(const Node& node) const;

  Scene& scene_;
  std::optional<Animation> animation_;
  bool first_;
  double now_;
  std::vector<std::pair<Attributes::Match, Handover>> handovers_;
  std::vector<WeakNode> newMatches_;
};

}  // namespace tarnwick::ui
