#pragma once
#include <cstdint>
#include <map>
#include <string>

#include "base/AppSettings.h"
#include "base/Observed.h"
#include "base/Scheduler.h"
#include "claude/ClaudeService.h"
#include "platform/PermissionRequests.h"

namespace tarnwick {

/// The permissions that can be given here. A request stays open until the user answers it, until the session
/// shows that it was answered in its terminal, or its program is gone. Nothing is ever allowed but by
/// `allow`. Of a flood only the latest stay open: the others are left to their terminals.
class PermissionService : public ObservableObject {
 public:
  /// For so long, in seconds, buttons that have come up take no answer: a click on its way was meant for what
  /// was there before.
  static constexpr double settling = 0.5;

  /// All arguments must outlive it.
  PermissionService(
      Scheduler& scheduler, ClaudeService& claude, PermissionRequests& requests, const AppSettings& settings);

  /// The session whose request the list shows; empty: of none.
  Observed<std::string> disclosed{*this};

  /// Takes a request in, and tells its session of it.
  void ask(const PermissionRequests::Request& request);
  /// Leaves a request to its terminal of which nobody else is to hear.
  void decline(uint64_t number) { requests_.answer(number, {}); }

  /// The first request of a session that can be answered here; null: there is none.
  static const Session::Request* requestOf(const Session& session);
  /// The one session that can be answered; empty where there is none, or more than one.
  std::string onlySession() const;
  /// What the tool would be called with, as JSON; empty where the request is not open.
  const std::string& input(uint64_t number) const;

  /// The buttons for a request have come up, or have moved.
  void appeared(uint64_t number);
  /// Whether that request takes an answer now.
  bool takesAnswer(uint64_t number) const;
  /// Answers that request, where it takes an answer now.
  void allow(uint64_t number);
  void deny(uint64_t number);

 private:
  struct Open {
    std::string session, input;
    /// When its buttons have come up, as of `uptime`; none: they have not.
    std::optional<double> since = {};
  };
  using OpenRequests = std::map<uint64_t, Open>;

  void answer(uint64_t number, PermissionAnswer answer);
  void releaseAnswered();
  OpenRequests::iterator release(OpenRequests::iterator open);
  void withdraw(uint64_t number);
  void makeRoom();

  Scheduler& scheduler_;
  ClaudeService& claude_;
  PermissionRequests& requests_;
  const AppSettings& settings_;
  OpenRequests open_;
  Subscription ends_, changes_, switches_;
};

}  // namespace tarnwick
