#pragma once
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "base/Animation.h"
#include "base/Scheduler.h"
#include "ui/View.h"
#include "ui/engine/SceneInput.h"
#include "ui/engine/Timelines.h"

namespace tarnwick::ui {

class Host;
class Node;

/// A tree of views on the screen. It compares each new description with what is shown, keeps what moves
/// moving, and knows what must be painted again. It draws nothing by itself: a host asks for frames.
class Scene : public transaction::Committer {
 public:
  Scene(Scheduler& scheduler, Size size, View root, double pixelRatio = 1);
  ~Scene() override;

  /// Everything takes its new place at once.
  void resize(Size size);
  /// Device pixels per point.
  void setPixelRatio(double ratio);
  /// Seconds that a motion is ahead of its commit: as much as its first frame, which is shown at once, would
  /// otherwise be late.
  void setLead(double seconds) { lead_ = seconds; }
  Size size() const { return size_; }
  double pixelRatio() const { return pixelRatio_; }

  /// Called when there is something to show: the host is to call `frame` soon.
  std::function<void()> onNeedsFrame;

  /// Takes over pending changes and moves everything to the present. @return true while anything is in
  /// motion.
  bool frame();
  /// Whether what was in motion then only repeats for ever.
  bool onlyRepeats() const { return onlyRepeats_; }
  /// What has to be painted again since the last call, in points.
  std::vector<Rect> takeDamage();
  /// What is shown, as presented by the last frame.
  Node& root() { return *root_; }

  // For elements and nodes
  Date now() const { return scheduler_.now(); }
  /// Has the node's element build its content again with the next commit.
  void renew(Node& node);
  /// In seconds, as told by the scheduler.
  double uptime() const { return scheduler_.uptime(); }
  Task after(double seconds, std::function<void()> work) {
    return scheduler_.after(seconds, std::move(work));
  }
  /// Something looks different without a change of views.
  void requestFrame();
  /// An element has scrolled its content.
  void scrolled();

  /// The window that shows the scene; none off screen. It must outlive its use.
  void setHost(Host* host) { host_ = host; }
  Host* host() const { return host_; }

  /// What pointer and keyboard do.
  SceneInput& input() { return input_; }

  /// The frame, as presented now, of the view with that explicit id, also of a transparent one; none while
  /// there is no such view.
  std::optional<Rect> presentedFrame(const std::string& id) const;
  /// Whether there is a view with that explicit id, neither clipped away nor fully transparent.
  bool isVisible(const std::string& id) const;
  /// The shape that the view with that id is clipped to, as presented now, in its own coordinates.
  std::optional<Shape> presentedClip(const std::string& id) const;

  /// A view that tells assistive technology what it is.
  struct Control {
    /// Stays as long as the view does, and never means another one.
    unsigned long id;
    Role role;
    std::string name;
    /// Whether it is on, where it may be on or off.
    std::optional<bool> checked;
    /// As presented, in points.
    Rect frame;
    /// What a click does; may be empty.
    std::function<void()> press;
    /// What it is set to, where there is something to set.
    std::optional<AdjustableValue> value;
    bool takesFocus, hasFocus;
  };
  /// What floats beside the views, such as a menu: as presented, in points; none while nothing does.
  std::optional<Rect> floating() const { return input_.menus_.frame(); }

  /// Whether something floats before that part of the scene.
  bool isCovered(const Rect& area) const;

  /// Those that can be seen, in the order of drawing.
  std::vector<Control> controls() const;
  /// Gives the keyboard's focus to the control with that number, if there still is one.
  void focusControl(unsigned long id);

  void commit(const std::optional<Animation>& animation) override;

 private:
  friend class Reconciler;
  friend class SceneInput;
  friend class Inspector;

  friend class Node;

  void layOutAnew();
  void layOut(class Reconciler& reconciler);
  void finishLeaving(Node& node);
  void updateTimelines();
  void beat(const std::vector<Node*>& nodes);
  void discard(std::unique_ptr<Node> node);
  void forget(Node& node);
  void addDamage(const Rect& rect);
  Node* find(Node& node, const std::string& key) const;

  Scheduler& scheduler_;
  Size size_;
  double pixelRatio_;
  double lead_ = 0;
  std::unique_ptr<Node> root_;
  std::set<Node*> dirty_;
  std::set<Node*> timelineViews_;
  Timelines timelines_{scheduler_, [this](const auto& nodes) { beat(nodes); }};
  std::vector<std::function<void()>> appeared_;
  std::vector<Rect> damage_;
  Task pendingCommit_;
  unsigned commitNumber_ = 0;
  unsigned renewals_ = 0;
  bool committing_ = false;
  /// A frame has been made.
  bool onlyRepeats_ = false;
  bool shown_ = false;
  Host* host_ = nullptr;
  SceneInput input_;
};

}  // namespace tarnwick::ui
