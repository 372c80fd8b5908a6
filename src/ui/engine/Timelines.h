#pragma once
#include <functional>
#include <map>
#include <vector>

#include "base/Scheduler.h"

namespace tarnwick::ui {

class Node;

/// The beats of all views that renew themselves. An interval's beats are the multiples of it in wall-clock
/// time, so that views of one interval beat together; one that comes shortly before another waits for it.
/// Each beat costs a frame and wakes the machine.
class Timelines {
 public:
  /// @param beat called with the views whose time it is
  Timelines(Scheduler& scheduler, std::function<void(const std::vector<Node*>&)> beat)
      : scheduler_(scheduler), beat_(std::move(beat)) {}

  /// Has the view beat every `interval` seconds from now on; nothing changes for one that does so already.
  void run(Node& node, double interval);
  void stop(Node& node);

 private:
  struct Entry {
    double interval;
    /// In seconds since 1970.
    double due;
  };
  void schedule();
  void beat();

  Scheduler& scheduler_;
  const std::function<void(const std::vector<Node*>&)> beat_;
  std::map<Node*, Entry> entries_;
  Task next_;
};

}  // namespace tarnwick::ui
