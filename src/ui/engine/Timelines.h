#pragma once
#include <functional>
#include <map>
#include <vector>

#include "base/Scheduler.h"
#include "ui/Beat.h"

namespace tarnwick::ui {

class Node;

/// The beats of all views that renew themselves. An interval's beats are counted from one origin, as a rule
/// that of wall-clock time, so that views of one interval beat together; one that comes shortly before
/// another waits for it. Each beat costs a frame and wakes the machine.
class Timelines {
 public:
  /// @param beat called with the views whose time it is
  Timelines(Scheduler& scheduler, std::function<void(const std::vector<Node*>&)> beat)
      : scheduler_(scheduler), beat_(std::move(beat)) {}

  /// Has the view beat from now on; nothing changes for one that does so already.
  void run(Node& node, const Beat& beat);
  void stop(Node& node);

 private:
  struct Entry {
    Beat beat;
    Date due;
  };
  void schedule();
  void beat();

  Scheduler& scheduler_;
  const std::function<void(const std::vector<Node*>&)> beat_;
  std::map<Node*, Entry> entries_;
  Task next_;
};

}  // namespace tarnwick::ui
