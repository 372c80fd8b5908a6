#include "claude/PermissionService.h"

#include <algorithm>

#include "base/L10n.h"

namespace tarnwick {
namespace {

/// More than that wait only of a flood.
constexpr size_t mostOpen = 200, mostBytes = 4 << 20;

}  // namespace

PermissionService::PermissionService(
    Scheduler& scheduler, ClaudeService& claude, PermissionRequests& requests, const AppSettings& settings)
    : scheduler_(scheduler),
      claude_(claude),
      requests_(requests),
      settings_(settings),
      ends_(requests.observeEnd([this](uint64_t number) { withdraw(number); })),
      changes_(claude.observe([this] { releaseAnswered(); })),
      switches_(settings.observe([this] {
        while (!settings_.answerPermissions && !open_.empty()) withdraw(open_.begin()->first);
      })) {}

void PermissionService::ask(const PermissionRequests::Request& request) {
  StringMap event = request.event;
  std::string input = valueOf(event, toolInputKey).value_or("");
  event.erase(toolInputKey);
  const bool isTaken =
      settings_.answerPermissions && !input.empty() && input.size() <= longestToolInput &&
      !isAnsweredInTerminal(valueOf(event, "tool_name").value_or(""));
  // Known before the session tells of it.
  if (isTaken)
    open_[request.number] = {ClaudeService::sessionOf(event), std::move(input)};
  else
    decline(request.number);
  claude_.handle(event, isTaken ? request.number : 0);
  releaseAnswered();
  makeRoom();
}

const Session::Request* PermissionService::requestOf(const Session& session) {
  const auto found = std::ranges::find_if(session.requests, [](const auto& one) { return one.number != 0; });
  return found == session.requests.end() ? nullptr : &*found;
}

std::string PermissionService::onlySession() const {
  std::string only;
  for (const auto& [number, open] : open_) {
    if (!only.empty() && only != open.session) return "";
    only = open.session;
  }
  return only;
}

const std::string& PermissionService::input(uint64_t number) const {
  static const std::string none;
  const auto found = open_.find(number);
  return found == open_.end() ? none : found->second.input;
}

void PermissionService::appeared(uint64_t number) {
  if (const auto found = open_.find(number); found != open_.end()) found->second.since = scheduler_.uptime();
}

bool PermissionService::takesAnswer(uint64_t number) const {
  const auto found = open_.find(number);
  const auto since = found == open_.end() ? std::nullopt : found->second.since;
  return since && scheduler_.uptime() - *since >= settling;
}

void PermissionService::allow(uint64_t number) {
  answer(number, {.behavior = PermissionAnswer::Behavior::allow});
}

void PermissionService::deny(uint64_t number) {
  answer(number, {.behavior = PermissionAnswer::Behavior::deny,
                     .message = tr("The user has denied this.", "L'utilisateur a refusé.")});
}

void PermissionService::answer(uint64_t number, PermissionAnswer answer) {
  if (!takesAnswer(number)) return;
  const std::string session = open_.extract(number).mapped().session;
  requests_.answer(number, answer);
  const auto& requests = claude_.sessions->at(session).requests;
  const auto answered = std::ranges::find(requests, number, &Session::Request::number);
  claude_.resume(session, *answered, answer.behavior == PermissionAnswer::Behavior::allow);
}

/// Those that their sessions do not wait for any more.
void PermissionService::releaseAnswered() {
  for (auto open = open_.begin(); open != open_.end();) {
    const auto session = claude_.sessions->find(open->second.session);
    const bool waits =
        session != claude_.sessions->end() &&
        std::ranges::count(session->second.requests, open->first, &Session::Request::number) > 0;
    open = waits ? std::next(open) : release(open);
  }
}

PermissionService::OpenRequests::iterator PermissionService::release(OpenRequests::iterator open) {
  decline(open->first);
  return open_.erase(open);
}

/// Its session waits on, but not for us.
void PermissionService::withdraw(uint64_t number) {
  const auto open = open_.find(number);
  if (open == open_.end()) return;
  const std::string session = open->second.session;
  release(open);
  claude_.withdraw(session, number);
}

void PermissionService::makeRoom() {
  size_t bytes = 0;
  for (const auto& [number, open] : open_) bytes += open.input.size();
  while (open_.size() > mostOpen || bytes > mostBytes) {
    bytes -= open_.begin()->second.input.size();
    withdraw(open_.begin()->first);
  }
}

}  // namespace tarnwick
