#pragma once
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/AppSettings.h"
#include "base/Banner.h"
#include "base/CrabMood.h"
#include "base/Observed.h"
#include "base/Scheduler.h"
#include "claude/Session.h"
#include "platform/NotificationCenter.h"
#include "platform/SoundPlayer.h"

namespace tarnwick {

/// Follows the Claude Code sessions by their hook events: a phase and a line of text for each, a banner and a
/// sound when one waits for the user or has finished. Sessions live in memory only.
class ClaudeService : public ObservableObject {
 public:
  ClaudeService(Scheduler& scheduler, SoundPlayer& sounds);

  /// All known sessions by their identifier.
  Observed<std::map<std::string, Session>> sessions{*this};
  /// Read for `claudeSounds`; without settings sounds are on.
  const AppSettings* settings = nullptr;
  /// Asks to present a banner for a number of seconds.
  std::function<void(const Banner&, double)> onBanner;

  /// The sessions that want the user first: waiting, working, done, idle; the newest first among equals.
  /// Sorted once after each change; the reference is good until the next one.
  const std::vector<Session>& ordered() const;
  int workingCount() const { return tally().working; }
  bool anyWaiting() const { return tally().waiting > 0; }

  /// Applies one hook event. Without a session identifier it is filed under "default"; an event of an unknown
  /// name is ignored.
  void handle(const StringMap& event);
  /// Turns working sessions idle after a quarter of an hour without events and forgets idle and done ones
  /// after twenty minutes. Waiting ones stay.
  void prune();
  /// Forgets all sessions that neither work nor wait.
  void clearFinished();

  /// What a call of `tool` is doing, in one line.
  static std::string describe(const std::optional<std::string>& tool,
                              const std::optional<std::string>& detail);
  /// What a notification asks for, from its message.
  static std::string translate(std::string_view message);
  /// A duration in seconds as "7s" or "2m14s".
  static std::string format(double seconds);

 private:
  struct Tally {
    int working = 0;
    int waiting = 0;
  };

  const Tally& tally() const;
  void announce(const char* icon, Color tint, const Session& session, CrabMood crab, double seconds,
                const char* sound) const;

  Scheduler& scheduler_;
  SoundPlayer& sounds_;
  // Derived from `sessions` when first asked for after a change.
  mutable std::optional<std::vector<Session>> ordered_;
  mutable std::optional<Tally> tally_;
  // Made in the constructor, so that it is told of a change before anybody who might read a derived value.
  Subscription forgetDerived_;
};

}  // namespace tarnwick
