#include "claude/ClaudeService.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <utility>

#include "base/DisplayText.h"
#include "base/L10n.h"
#include "base/LastPathComponent.h"
#include "base/TerminalVariables.h"

namespace tarnwick {
namespace {

constexpr double idleAfter = 900;
constexpr double forgottenAfter = 1200;
/// A session is seen at rest before it goes.
constexpr double shortestRest = forgottenAfter - idleAfter;
/// Of those here, and of all others together.
constexpr size_t mostSessions = 100, mostElsewhere = 50;

int rank(Phase phase) {
  switch (phase) {
    case Phase::waiting:
      return 0;
    case Phase::working:
      return 1;
    case Phase::done:
      return 2;
    case Phase::idle:
      break;
  }
  return 3;
}

char lowercase(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

/// True for the reminder that Claude Code sends when the user has left a prompt unanswered: the session has
/// already said that it is done. The phrase is plain ASCII, so folding ASCII letters finds it in any case; a
/// Turkish locale, which lowercases I differently, must not make a difference to an English phrase.
bool isIdleReminder(const StringMap& event, const std::string& message) {
  if (valueOf(event, "notification_type") == "idle_prompt") return true;
  constexpr std::string_view phrase = "waiting for your input";
  return std::search(message.begin(), message.end(), phrase.begin(), phrase.end(), [](char a, char b) {
    return lowercase(a) == b;
  }) != message.end();
}

bool isAtRest(const Session& session) { return session.phase == Phase::idle || session.phase == Phase::done; }

/// When it comes to rest or is forgotten, unless something is heard of it; none: it stays.
std::optional<Date> nextAge(const Session& session) {
  if (session.phase == Phase::working) return session.updatedAt + idleAfter;
  if (!isAtRest(session)) return std::nullopt;
  const Date forgotten = session.updatedAt + forgottenAfter;
  return session.restingSince ? std::max(forgotten, *session.restingSince + shortestRest) : forgotten;
}

/// Makes room for the latest of those that run here or elsewhere: the oldest ones at rest go first.
void forgetTheOldest(std::map<std::string, Session>& sessions, bool elsewhere) {
  const auto isOther = [&](const auto& entry) { return entry.second.elsewhere.has_value() != elsewhere; };
  const auto others = static_cast<size_t>(std::ranges::count_if(sessions, isOther));
  while (sessions.size() - others > (elsewhere ? mostElsewhere : mostSessions)) {
    sessions.erase(std::ranges::min_element(sessions, {}, [&](const auto& entry) {
      return std::tuple(isOther(entry), !isAtRest(entry.second), entry.second.updatedAt);
    }));
  }
}

std::optional<std::string> textOf(const StringMap& event, const char* key) {
  const auto value = valueOf(event, key);
  return value ? std::optional(displayText(*value)) : std::nullopt;
}

std::optional<ForeignProcess> processOf(const StringMap& event) {
  ForeignProcess process;
  const auto isNumber = [&](const char* key, auto& number) {
    const std::string text = valueOf(event, key).value_or("");
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size();
  };
  const bool isKnown = isNumber("process", process.number) && isNumber("process_namespace", process.space);
  return isKnown ? std::optional(process) : std::nullopt;
}

StringMap terminalOf(const StringMap& event) {
  StringMap terminal;
  for (const char* name : terminalVariables) {
    const auto value = valueOf(event, name);
    if (value && value->size() <= longestTerminalValue) terminal[name] = *value;
  }
  return terminal;
}

std::string thinking() { return tr("Thinking…", "Réfléchit…"); }

/// The tool's call that an event is about; without a text and a number.
Session::Request callOf(const StringMap& event) {
  return {
      .tool = textOf(event, "tool_name").value_or(""), .detail = textOf(event, "tool_detail").value_or("")};
}

/// Of two that are equal one is left.
void removeFirst(std::vector<Session::Request>& requests, const auto& isIt) {
  const auto found = std::ranges::find_if(requests, isIt);
  if (found != requests.end()) requests.erase(found);
}

/// It works, unless something waits for the user all the same, such as another tool's call beside this one.
void goOn(Session& session, std::string activity) {
  const Session::Request* waiting = session.request();
  session.phase = waiting ? Phase::waiting : Phase::working;
  session.activity = waiting ? waiting->text : std::move(activity);
}

}  // namespace

ClaudeService::ClaudeService(Scheduler& scheduler, SoundPlayer& sounds)
    : scheduler_(scheduler), sounds_(sounds), changes_(observe([this] {
        ordered_.reset();
        awaitNextAge();
      })) {}

const std::vector<Session>& ClaudeService::ordered() const {
  // Read in any case: who asks for the order depends on the sessions.
  const auto& all = sessions.get();
  if (!ordered_) {
    ordered_.emplace();
    ordered_->reserve(all.size());
    for (const auto& [id, session] : all) ordered_->push_back(session);
    std::sort(ordered_->begin(), ordered_->end(), [](const Session& a, const Session& b) {
      const int rankA = rank(a.phase), rankB = rank(b.phase);
      return rankA != rankB ? rankA < rankB : a.updatedAt > b.updatedAt;
    });
  }
  return *ordered_;
}

std::optional<Session> ClaudeService::longestWaiting() const {
  const Session* longest = nullptr;
  for (const auto& [id, session] : *sessions) {
    const bool waits = session.phase == Phase::waiting;
    if (waits && (!longest || session.phaseSince < longest->phaseSince)) longest = &session;
  }
  return longest ? std::optional(*longest) : std::nullopt;
}

ClaudeService::Tally ClaudeService::tally() const {
  Tally tally;
  for (const auto& [id, session] : *sessions) {
    tally.working += session.phase == Phase::working;
    tally.waiting += session.phase == Phase::waiting;
  }
  return tally;
}

void ClaudeService::announce(const char* icon, Color tint, const Session& session,
    std::optional<CrabMood> crab, double seconds, Sound sound) const {
  const std::string machine = session.elsewhere.value_or("");
  if (onBanner) {
    onBanner(
        {.icon = icon,
            .tint = tint,
            .title = session.project + (machine.empty() ? "" : " · " + machine),
            .subtitle = session.activity,
            .crab = crab,
            .detail = session.request() ? session.request()->detail : "",
            .session = session.id},
        seconds);
  }
  if (!settings || settings->claudeSounds) sounds_.play(sound);
}

std::string ClaudeService::sessionOf(const StringMap& event) {
  return valueOf(event, "session_id").value_or("default");
}

void ClaudeService::handle(const StringMap& event, uint64_t request) {
  const std::string id = sessionOf(event);
  const std::string folder = valueOf(event, "cwd").value_or("");
  const std::string name = valueOf(event, "hook_event_name").value_or("");
  const Date now = scheduler_.now();

  if (name == "SessionEnd") return end(id);

  const auto known = sessions->find(id);
  Session session = known != sessions->end() ? known->second : Session{.id = id, .startedAt = now};
  session.project = folder.empty() ? "Claude Code" : displayText(lastPathComponent(folder));
  session.updatedAt = now;
  session.restingSince.reset();
  session.elsewhere = textOf(event, machineKey);
  session.process = session.elsewhere ? std::nullopt : processOf(event);
  session.transcript = session.elsewhere ? "" : valueOf(event, "transcript_path").value_or("");
  session.terminal = session.elsewhere ? StringMap() : terminalOf(event);
  const auto requested = std::exchange(session.requests, {});
  // Of the others the next event tells that they were answered.
  std::vector<Session::Request> open;
  std::ranges::copy_if(requested, std::back_inserter(open), [](const auto& one) { return one.number != 0; });

  if (name == "SessionStart") {
    // Only its being there is news.
  } else if (name == "UserPromptSubmit") {
    session.phase = Phase::working;
    session.startedAt = now;
    session.finishedAt.reset();
    session.activity = thinking();
  } else if (name == "PreToolUse") {
    if (isAtRest(session)) session.startedAt = now;
    session.requests = std::move(open);
    goOn(session, describe(textOf(event, "tool_name"), textOf(event, "tool_detail")));
  } else if (name == "PermissionRequest") {
    // Without a banner or a sound: the user may be looking at the dialog. A notification follows after some
    // seconds.
    session.phase = Phase::waiting;
    session.requests = std::move(open);
    Session::Request asked = callOf(event);
    asked.text = describeRequest(asked.tool, textOf(event, "question"));
    asked.number = session.elsewhere ? 0 : request;
    session.requests.push_back(std::move(asked));
    session.activity = session.request()->text;
  } else if (name == "PostToolUse") {
    session.requests = std::move(open);
    const Session::Request call = callOf(event);
    removeFirst(session.requests,
        [&](const auto& one) { return one.tool == call.tool && one.detail == call.detail; });
    goOn(session, thinking());
  } else if (name == "Notification") {
    const std::string message = valueOf(event, "message").value_or("");
    if (isIdleReminder(event, message)) return;
    session.phase = Phase::waiting;
    const bool isAboutRequest = valueOf(event, "notification_type") == "permission_prompt";
    session.requests = isAboutRequest ? requested : std::move(open);
    // Newer ones say only that a permission is needed, which the request has said better.
    if (!isAboutRequest || requested.empty() || namesTool(message))
      session.activity = translate(displayText(message));
    announce("hand.raised.fill", colors::yellow, session, CrabMood::waiting, 8, Sound::message);
  } else if (name == "Stop") {
    session.phase = Phase::done;
    session.finishedAt = now;
    session.activity = tr("Done in ", "Terminé en ") + format(now - session.startedAt);
    announce("checkmark.circle.fill", colors::green, session, CrabMood::happy, 5, Sound::complete);
  } else if (name == "StopFailure") {
    session.phase = Phase::waiting;
    const std::string said = textOf(event, "last_assistant_message").value_or("");
    session.activity = said.empty() ? describeFailure(textOf(event, "error").value_or("")) : said;
    announce("exclamationmark.triangle.fill", colors::red, session, std::nullopt, 8, Sound::batteryLow);
  } else {
    return;
  }
  if (known == sessions->end() || known->second.phase != session.phase) session.phaseSince = now;
  const bool isElsewhere = session.elsewhere.has_value();
  sessions.mutate([&](auto& all) {
    all[id] = std::move(session);
    forgetTheOldest(all, isElsewhere);
    return true;
  });
}

void ClaudeService::end(const std::string& id) {
  sessions.mutate([&](auto& all) { return all.erase(id) > 0; });
}

void ClaudeService::forget(const std::string& id) {
  sessions.mutate([&](auto& all) {
    const auto found = all.find(id);
    if (found == all.end() || !isAtRest(found->second)) return false;
    all.erase(found);
    return true;
  });
}

void ClaudeService::interrupt(const std::string& id) {
  change(id, [this](Session& session) {
    session.phase = Phase::idle;
    session.activity = tr("Interrupted", "Interrompu");
    session.restingSince = scheduler_.now();
    session.requests.clear();
  });
}

void ClaudeService::refuse(const std::string& id) {
  const auto session = sessions->find(id);
  if (session == sessions->end() || session->second.requests.empty()) return;
  change(id, [](Session& refused) {
    refused.requests.clear();
    goOn(refused, thinking());
  });
}

void ClaudeService::resume(const std::string& id, Session::Request request, bool isGranted) {
  change(id, [&](Session& session) {
    removeFirst(session.requests, [&](const auto& one) { return one == request; });
    goOn(session, isGranted ? describe(request.tool, request.detail) : thinking());
  });
}

void ClaudeService::withdraw(const std::string& id, uint64_t request) {
  sessions.mutate([&](auto& all) {
    const auto session = all.find(id);
    if (session == all.end()) return false;
    const auto found = std::ranges::find(session->second.requests, request, &Session::Request::number);
    if (found == session->second.requests.end()) return false;
    found->number = 0;
    return true;
  });
}

template<typename Change>
void ClaudeService::change(const std::string& id, Change apply) {
  sessions.mutate([&](auto& all) {
    const auto found = all.find(id);
    if (found == all.end()) return false;
    Session& session = found->second;
    const Phase before = session.phase;
    apply(session);
    session.updatedAt = scheduler_.now();
    if (session.phase != before) session.phaseSince = session.updatedAt;
    return true;
  });
}

void ClaudeService::prune() {
  const Date now = scheduler_.now();
  sessions.mutate([&](auto& all) {
    bool changed = false;
    for (auto it = all.begin(); it != all.end();) {
      Session& session = it->second;
      const auto age = nextAge(session);
      const bool isDue = age && *age < now;
      changed = changed || isDue;
      if (isDue && session.phase != Phase::working) {
        it = all.erase(it);
        continue;
      }
      if (isDue) {
        session.phase = Phase::idle;
        session.activity = tr("Idle", "Inactif");
        session.phaseSince = now;
        session.restingSince = now;
      }
      ++it;
    }
    return changed;
  });
}

void ClaudeService::awaitNextAge() {
  std::optional<Date> first;
  for (const auto& [id, session] : *sessions) {
    const auto age = nextAge(session);
    if (age && (!first || *age < *first)) first = age;
  }
  if (nextAge_ == first) return;
  nextAge_ = first;
  aging_ = {};
  // A second later that age is over.
  if (first) {
    aging_ = scheduler_.at(*first + 1, [this] {
      nextAge_.reset();
      prune();
      awaitNextAge();
    });
  }
}

void ClaudeService::clearFinished() {
  sessions.mutate([](auto& all) {
    return std::erase_if(all, [](const auto& entry) { return isAtRest(entry.second); }) > 0;
  });
}

}  // namespace tarnwick
