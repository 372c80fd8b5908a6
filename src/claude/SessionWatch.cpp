#include "claude/SessionWatch.h"

#include <algorithm>
#include <iterator>

#include "base/Animation.h"
#include "json/JsonValue.h"

namespace tarnwick {
namespace {

/// In seconds. Nothing tells that a process has started another, so it is looked for; the less often the
/// longer the user lets it wait: a tenth of that time too late.
constexpr double firstLook = 0.25, lastLook = 60, growth = 1.1;

/// In seconds: a prompt's own hook may still be under way when Claude Code is found idle.
constexpr double statusDelay = 3;

constexpr std::string_view interruption = "[Request interrupted by user",
                           refusal = "The user doesn't want to proceed with this tool use.";

/// Whether a line of a transcript is the entry by which the user says that, and not one that quotes it.
/// @param key under which a part of the entry says it
bool says(const std::string& line, std::string_view phrase, std::string_view key) {
  if (line.find(phrase) == line.npos) return false;
  const auto entry = parseJson(line);
  const auto* object = entry ? entry->as<JsonObject>() : nullptr;
  const auto* type = object ? memberOf<std::string>(*object, "type") : nullptr;
  const auto* message = object ? memberOf<JsonObject>(*object, "message") : nullptr;
  if (!type || *type != "user" || !message) return false;
  const auto isIt = [&](const std::string* text) { return text && text->starts_with(phrase); };
  if (isIt(memberOf<std::string>(*message, "content"))) return true;
  const auto* parts = memberOf<JsonArray>(*message, "content");
  return parts && std::ranges::any_of(*parts, [&](const JsonValue& part) {
    const auto* fields = part.as<JsonObject>();
    return fields && isIt(memberOf<std::string>(*fields, key));
  });
}

/// Whether the command stands in the arguments, which quote it for a shell: what is between its own quotes
/// and line breaks is compared, in its order.
bool holds(std::string_view arguments, std::string_view command) {
  bool isEmpty = true;
  while (!command.empty()) {
    const size_t end = std::min(command.find_first_of("'\"\\\n"), command.size());
    const std::string_view part = command.substr(0, end);
    const size_t found = arguments.find(part);
    if (found == arguments.npos) return false;
    isEmpty = isEmpty && part.empty();
    arguments.remove_prefix(found + part.size());
    command.remove_prefix(std::min(end + 1, command.size()));
  }
  return !isEmpty;
}

/// Where Claude Code keeps what one of its processes is doing: "sessions/PROCESS.json" beside the folder
/// "projects" of the transcripts. Empty when the transcript lies elsewhere.
FilePath statusFile(const FilePath& transcript, int32_t process) {
  const size_t project = transcript.rfind('/');
  const size_t projects =
      project == transcript.npos || project == 0 ? transcript.npos : transcript.rfind('/', project - 1);
  if (projects == transcript.npos) return {};
  const std::string_view folder = std::string_view(transcript).substr(0, projects);
  if (!folder.ends_with("/projects")) return {};
  const size_t root = folder.rfind('/') + 1;
  return transcript.substr(0, root) + "sessions/" + std::to_string(process) + ".json";
}

/// What that file says of the session: "busy", "idle" …; empty when it is about none or another one.
std::string statusIn(const std::string& text, const std::string& id) {
  const auto value = parseJson(text);
  const auto* object = value ? value->as<JsonObject>() : nullptr;
  const auto* session = object ? memberOf<std::string>(*object, "sessionId") : nullptr;
  const auto* status = object ? memberOf<std::string>(*object, "status") : nullptr;
  return session && status && *session == id ? *status : "";
}

}  // namespace

SessionWatch::SessionWatch(
    ClaudeService& claude, Scheduler& scheduler, ForeignProcesses& processes, GrowingFiles& files)
    : claude_(claude),
      scheduler_(scheduler),
      processes_(processes),
      files_(files),
      changes_(claude.observe([this] { update(); })) {}

void SessionWatch::update() {
  std::erase_if(watched_, [this](const auto& entry) { return !claude_.sessions->contains(entry.first); });
  for (const auto& [id, session] : *claude_.sessions) update(session, watched_[id]);
}

void SessionWatch::update(const Session& session, Watched& watched) {
  const std::string& id = session.id;
  if (watched.process != session.process) {
    watched.process = session.process;
    watched.end = {};
    if (session.process)
      watched.end = processes_.watch(
          *session.process, [this, id] { withAnimation(notchClose, [&] { claude_.end(id); }); });
  }
  const bool isBusy = session.phase == Phase::working || session.phase == Phase::waiting;
  const FilePath transcript = isBusy ? session.transcript : FilePath();
  if (watched.transcript != transcript) {
    watched.transcript = transcript;
    watched.lines = {};
    if (!transcript.empty()) {
      watched.lines = files_.follow(transcript, [this, id](const std::string& line) {
        if (says(line, interruption, "text")) withAnimation(notchOpen, [&] { claude_.interrupt(id); });
        // The user has told what to do in its place.
        if (says(line, refusal, "content")) withAnimation(notchOpen, [&] { claude_.refuse(id); });
      });
    }
  }
  followStatus(session, watched);
  await(session, watched);
}

void SessionWatch::followStatus(const Session& session, Watched& watched) {
  const bool isFollowed = session.phase == Phase::working && session.process;
  const FilePath status = isFollowed ? statusFile(session.transcript, session.process->number) : FilePath();
  if (watched.status == status) return;
  watched.status = status;
  watched.statusChanges = {};
  watched.rest = {};
  watched.wasBusy = false;
  if (status.empty()) return;
  watched.statusChanges = files_.followWhole(status, [this, id = session.id](const std::string& text) {
    Watched& changed = watched_[id];
    changed.rest = {};
    const std::string now = statusIn(text, id);
    // What works in the background says so while nothing else does.
    changed.wasBusy = changed.wasBusy || now == "busy";
    if (!changed.wasBusy || now != "idle") return;
    // Who ends in the usual way says so at the same time.
    const Date heard = claude_.sessions->at(id).updatedAt;
    changed.rest = scheduler_.after(statusDelay, [this, id, heard] {
      const auto found = claude_.sessions->find(id);
      const bool isSilent = found != claude_.sessions->end() && found->second.updatedAt == heard;
      if (isSilent) withAnimation(notchOpen, [&] { claude_.interrupt(id); });
    });
  });
}

void SessionWatch::await(const Session& session, Watched& watched) {
  std::vector<Session::Request> commands;
  std::ranges::copy_if(session.requests, std::back_inserter(commands), [&](const auto& request) {
    return session.process && request.tool == "Bash" && !request.detail.empty();
  });
  if (watched.commands == commands) return;
  const bool hasMore = commands.size() >= watched.commands.size();
  watched.commands = std::move(commands);
  if (watched.commands.empty()) return watched.children.clear();
  if (hasMore) {
    for (const auto& child : processes_.children(*session.process)) watched.children.insert(child.number);
  }
  watched.pause = firstLook;
  watched.due = scheduler_.uptime() + firstLook;
  lookLater();
}

void SessionWatch::lookLater() {
  std::optional<double> first;
  for (const auto& [id, watched] : watched_) {
    if (!watched.commands.empty()) first = std::min(first.value_or(watched.due), watched.due);
  }
  look_ = first ? scheduler_.after(std::max(0.0, *first - scheduler_.uptime()), [this] { look(); }) : Task();
}

void SessionWatch::look() {
  const double now = scheduler_.uptime();
  std::vector<std::pair<std::string, Session::Request>> granted;
  for (auto& [id, watched] : watched_) {
    // Those that are due soon come along: however many wait, the looks are few.
    if (watched.commands.empty() || watched.due - now > watched.pause / 2) continue;
    watched.pause = std::min(watched.pause * growth, lastLook);
    watched.due = now + watched.pause;
    if (const auto command = grantedCommand(watched)) granted.emplace_back(id, *command);
  }
  lookLater();
  for (const auto& [id, command] : granted) withAnimation(notchOpen, [&] { claude_.resume(id, command); });
}

std::optional<Session::Request> SessionWatch::grantedCommand(Watched& watched) {
  for (const auto& child : processes_.children(*watched.process)) {
    if (watched.children.contains(child.number)) continue;
    for (const Session::Request& request : watched.commands) {
      if (!holds(child.arguments, request.detail)) continue;
      watched.children.insert(child.number);
      return request;
    }
  }
  return std::nullopt;
}

}  // namespace tarnwick
