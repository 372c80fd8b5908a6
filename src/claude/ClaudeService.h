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
#include "base/Derived.h"
#include "base/Observed.h"
#include "base/Scheduler.h"
#include "claude/Session.h"
#include "platform/NotificationCenter.h"
#include "platform/SoundPlayer.h"

namespace tarnwick {

/// Follows the Claude Code sessions by their hook events: a phase and a line of text for each, a banner and a
/// sound when one waits for the user or has finished. A working session of which nothing is heard for a
/// quarter of an hour comes to rest; idle and done ones are forgotten after twenty minutes, and waiting ones
/// never. Sessions live in memory only, the most recent hundred of them.
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
  int workingCount() const { return tally_.get().working; }
  bool anyWaiting() const { return tally_.get().waiting > 0; }
  /// The session that has waited for the user longest; none where none waits.
  std::optional<Session> longestWaiting() const;

  /// The identifier of the session that an event is of; "default" where it names none.
  static std::string sessionOf(const StringMap& event);
  /// Applies one hook event; one of an unknown name is ignored.
  /// @param request of a permission that can be answered here, its number
  void handle(const StringMap& event, uint64_t request = 0);
  /// The program of that session has ended: it is forgotten.
  void end(const std::string& id);
  /// The user has refused or interrupted what that session does: it rests.
  void interrupt(const std::string& id);
  /// The user has refused what that session waits for, but not interrupted it: it works again.
  void refuse(const std::string& id);
  /// What that session waits for was granted or refused: it works again, unless it waits for more.
  void resume(const std::string& id, Session::Request request, bool isGranted = true);
  /// That request can be answered in the terminal only from now on.
  void withdraw(const std::string& id, uint64_t request);
  /// Forgets that session, unless it works or waits.
  void forget(const std::string& id);
  /// Forgets all sessions.
  void clear() { sessions = {}; }
  /// Forgets all sessions that neither work nor wait.
  void clearFinished();

  /// What a call of `tool` is doing, in one line.
  static std::string describe(
      const std::optional<std::string>& tool, const std::optional<std::string>& detail);
  /// Whether the message of a notification says which tool wants a permission.
  static bool namesTool(std::string_view message);
  /// What a notification asks for, from its message.
  static std::string translate(std::string_view message);
  /// What a call of `tool` waits for: a permission, or the answer to the question that it asks.
  static std::string describeRequest(const std::string& tool, const std::optional<std::string>& question);
  /// Why a session had to stop, from Claude Code's name for the error.
  static std::string describeFailure(const std::string& error);
  /// A duration in seconds as "7s" or "2m14s".
  static std::string format(double seconds);

 private:
  struct Tally {
    int working = 0;
    int waiting = 0;
    friend bool operator==(const Tally&, const Tally&) = default;
  };

  Tally tally() const;
  template<typename Change>
  void change(const std::string& id, Change apply);
  void prune();
  void awaitNextAge();
  void announce(const char* icon, Color tint, const Session& session, std::optional<CrabMood> crab,
      double seconds, Sound sound) const;

  Scheduler& scheduler_;
  SoundPlayer& sounds_;
  Derived<Tally> tally_{[this] { return tally(); }};
  // Sorted when first asked for after a change.
  mutable std::optional<std::vector<Session>> ordered_;
  // Made in the constructor, so that it is told of a change before any other observer, who might ask.
  Subscription changes_;
  std::optional<Date> nextAge_;
  Task aging_;
};

}  // namespace tarnwick
