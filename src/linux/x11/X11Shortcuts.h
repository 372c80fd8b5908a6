#pragma once
#include <map>
#include <memory>
#include <vector>

#include "base/Scheduler.h"
#include "linux/x11/X11KeyGrab.h"
#include "linux/x11/X11ReleaseWatch.h"
#include "platform/GlobalShortcuts.h"

namespace tarnwick {

/// Shortcuts through passive grabs. Those that another program has are had when it lets go of them.
class X11Shortcuts : public GlobalShortcuts {
 public:
  X11Shortcuts(X11Connection& connection, Scheduler& scheduler);

  void look() override {}
  void set(const std::map<std::string, Wanted>& wanted) override;
  void pause(bool paused) override;

 private:
  struct Shortcut {
    std::string name;
    std::vector<X11KeyGrab::Key> keys;
    std::unique_ptr<X11KeyGrab> grab;
  };

  std::vector<X11KeyGrab::Key> locate(const KeyChord& chord) const;
  void grab();
  void grabIn(double seconds);
  void handle(const xcb_generic_event_t& event);

  X11Connection& connection_;
  Scheduler& scheduler_;
  std::map<std::string, Wanted> wanted_;
  bool isPaused_ = false;
  std::vector<Shortcut> shortcuts_;
  X11KeyRepeats repeats_;
  std::unique_ptr<X11ReleaseWatch> releaseWatch_;
  Task retry_;
  Subscription events_;
};

}  // namespace tarnwick
