#include "claude/ClaudeService.h"

#include <algorithm>

#include "base/L10n.h"
#include "base/LastPathComponent.h"

namespace tarnwick {
namespace {

constexpr double idleAfter = 900;
constexpr double forgottenAfter = 1200;

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
  return std::search(message.begin(), message.end(), phrase.begin(), phrase.end(),
                     [](char a, char b) { return lowercase(a) == b; }) != message.end();
}

std::string thinking() { return tr("Thinking…", "Réfléchit…"); }

}  // namespace

ClaudeService::ClaudeService(Scheduler& scheduler, SoundPlayer& sounds)
    : scheduler_(scheduler), sounds_(sounds), forgetDerived_(observe([this] {
        ordered_.reset();
        tally_.reset();
      })) {}

const std::vector<Session>& ClaudeService::ordered() const {
  if (!ordered_) {
    ordered_.emplace();
    ordered_->reserve(sessions->size());
    for (const auto& [id, session] : *sessions) ordered_->push_back(session);
    std::sort(ordered_->begin(), ordered_->end(), [](const Session& a, const Session& b) {
      const int rankA = rank(a.phase), rankB = rank(b.phase);
      return rankA != rankB ? rankA < rankB : a.updatedAt > b.updatedAt;
    });
  }
  return *ordered_;
}

const ClaudeService::Tally& ClaudeService::tally() const {
  if (!tally_) {
    tally_.emplace();
    for (const auto& [id, session] : *sessions) {
      tally_->working += session.phase == Phase::working;
      tally_->waiting += session.phase == Phase::waiting;
    }
  }
  return *tally_;
}

void ClaudeService::announce(const char* icon, Color tint, const Session& session, CrabMood crab,
                             double seconds, const char* sound) const {
  if (onBanner) {
    onBanner(
        {.icon = icon, .tint = tint, .title = session.project, .subtitle = session.activity, .crab = crab},
        seconds);
  }
  if (!settings || settings->claudeSounds) sounds_.play(sound);
}

void ClaudeService::handle(const StringMap& event) {
  const std::string id = valueOf(event, "session_id").value_or("default");
  const std::string folder = valueOf(event, "cwd").value_or("");
  const std::string name = valueOf(event, "hook_event_name").value_or("");
  const Date now = scheduler_.now();

  if (name == "SessionEnd") {
    sessions.mutate([&](auto& all) { return all.erase(id) > 0; });
    return;
  }

  const auto known = sessions->find(id);
  Session session = known != sessions->end() ? known->second : Session{.id = id, .startedAt = now};
  session.project = folder.empty() ? "Claude Code" : lastPathComponent(folder);
  session.updatedAt = now;

  if (name == "SessionStart") {
    // Only its being there is news.
  } else if (name == "UserPromptSubmit") {
    session.phase = Phase::working;
    session.startedAt = now;
    session.finishedAt.reset();
    session.activity = thinking();
  } else if (name == "PreToolUse") {
    if (session.phase == Phase::done || session.phase == Phase::idle) session.startedAt = now;
    session.phase = Phase::working;
    session.activity = describe(valueOf(event, "tool_name"), valueOf(event, "tool_detail"));
  } else if (name == "PostToolUse") {
    session.phase = Phase::working;
    session.activity = thinking();
  } else if (name == "Notification") {
    const std::string message = valueOf(event, "message").value_or("");
    if (isIdleReminder(event, message)) return;
    session.phase = Phase::waiting;
    session.activity = translate(message);
    announce("hand.raised.fill", colors::yellow, session, CrabMood::waiting, 8, "Funk");
  } else if (name == "Stop") {
    session.phase = Phase::done;
    session.finishedAt = now;
    session.activity = tr("Done in ", "Terminé en ") + format(now - session.startedAt);
    announce("checkmark.circle.fill", colors::green, session, CrabMood::happy, 5, "Glass");
  } else {
    return;
  }
  sessions.mutate([&](auto& all) {
    all[id] = std::move(session);
    return true;
  });
}

void ClaudeService::prune() {
  const Date now = scheduler_.now();
  sessions.mutate([&](auto& all) {
    bool changed = false;
    for (auto it = all.begin(); it != all.end();) {
      Session& session = it->second;
      const double age = now - session.updatedAt;
      if (session.phase == Phase::working && age > idleAfter) {
        session.phase = Phase::idle;
        session.activity = tr("Idle", "Inactif");
        changed = true;
      }
      if ((session.phase == Phase::idle || session.phase == Phase::done) && age > forgottenAfter) {
        it = all.erase(it);
        changed = true;
      } else {
        ++it;
      }
    }
    return changed;
  });
}

void ClaudeService::clearFinished() {
  sessions.mutate([](auto& all) {
    return std::erase_if(all, [](const auto& entry) {
             return entry.second.phase == Phase::done || entry.second.phase == Phase::idle;
           }) > 0;
  });
}

}  // namespace tarnwick
