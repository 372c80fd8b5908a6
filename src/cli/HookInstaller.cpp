#include "cli/HookInstaller.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "base/AtomicFile.h"
#include "base/Utf8.h"

namespace tarnwick {
namespace {

void print(int stream, std::string_view text) {
  while (!text.empty()) {
    const ssize_t written = ::write(stream, text.data(), text.size());
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return;
    text.remove_prefix(static_cast<size_t>(written));
  }
}

void complain(std::string_view what, std::string_view description) {
  print(STDERR_FILENO, std::string(what) + std::string(description) + "\n");
}

constexpr std::string_view readFailure = "Could not read settings.json: ";
constexpr std::string_view writeFailure = "Could not write settings.json: ";

std::error_code createFolder(const std::string& path) {
  if (::mkdir(path.c_str(), 0777) == 0) return {};
  struct stat existing;
  if (errno == EEXIST && ::stat(path.c_str(), &existing) == 0) {
    return S_ISDIR(existing.st_mode) ? std::error_code() : std::make_error_code(std::errc::not_a_directory);
  }
  const size_t slash = path.rfind('/');
  if (errno == ENOENT && slash != std::string::npos && slash > 0) {
    if (const std::error_code error = createFolder(path.substr(0, slash))) return error;
    if (::mkdir(path.c_str(), 0777) == 0) return {};
  }
  return {errno, std::generic_category()};
}

bool isOurs(const JsonValue& entry) {
  const auto* object = entry.as<JsonObject>();
  const auto* command = object ? memberOf<std::string>(*object, "command") : nullptr;
  return command && command->find("Tarnwick") != command->npos && command->ends_with("--hook");
}

JsonArray* listOfObjects(JsonValue& value) {
  auto* list = value.as<JsonArray>();
  const auto isObject = [](const JsonValue& element) { return element.as<JsonObject>() != nullptr; };
  return list && std::ranges::all_of(*list, isObject) ? list : nullptr;
}

/// Takes our entries out of a group. @return whether nothing is left in it.
bool emptyGroup(JsonValue& group) {
  auto* entries = memberOf<JsonArray>(*group.as<JsonObject>(), "hooks");
  if (!entries) return false;
  std::erase_if(*entries, isOurs);
  return entries->empty();
}

/// The settings' hooks, taken out of them; empty when they are missing or of another shape.
JsonObject takeHooks(JsonObject& settings) {
  auto node = settings.extract("hooks");
  auto* hooks = node.empty() ? nullptr : node.mapped().as<JsonObject>();
  return hooks ? std::move(*hooks) : JsonObject();
}

}  // namespace

std::string HookInstaller::command() const {
  std::string quoted;
  for (const char character : executable_) {
    // A single quote cannot stand inside single quotes: close them, escape it, and open them again.
    character == '\'' ? quoted += "'\\''" : quoted += character;
  }
  return "'" + quoted + "' --hook";
}

std::error_code HookInstaller::backUp(std::string_view contents) const {
  const std::string last = path_ + ".bak-tarnwick", first = last + "-first";
  struct stat status;
  if (::lstat(first.c_str(), &status) != 0) {
    if (const std::error_code error = writeBackup(first, contents, path_)) return error;
  }
  return writeBackup(last, contents, path_);
}

std::optional<HookInstaller::Settings> HookInstaller::load() const {
  std::string contents;
  std::error_code error = readFile(path_, contents);
  if (error == std::errc::no_such_file_or_directory || error == std::errc::not_a_directory) return Settings();
  if (!error) error = backUp(contents);
  std::string problem = error.message();
  auto json = error ? std::nullopt : parseJson(contents, problem);
  if (!json) {
    complain(readFailure, problem);
    return std::nullopt;
  }
  auto* object = json->as<JsonObject>();
  if (!object) {
    complain("settings.json is not a JSON object", "");
    return std::nullopt;
  }
  return Settings{std::move(*object), contents.starts_with(byteOrderMark)};
}

JsonObject HookInstaller::removingOurs(JsonObject hooks) {
  for (auto event = hooks.begin(); event != hooks.end();) {
    auto* groups = listOfObjects(event->second);
    if (groups) std::erase_if(*groups, emptyGroup);
    event = groups && groups->empty() ? hooks.erase(event) : std::next(event);
  }
  return hooks;
}

bool HookInstaller::save(Settings settings) const {
  if (const std::error_code error = createFolder(folder_)) {
    complain(writeFailure, error.message());
    return false;
  }
  std::string text(settings.hasByteOrderMark ? byteOrderMark : "");
  text += writeJson({std::move(settings.values)});
  if (const std::error_code error = writeFileAtomically(path_, text)) {
    complain(writeFailure, error.message());
    return false;
  }
  return true;
}

JsonObject HookInstaller::ourGroup(std::string_view event) const {
  const int seconds = event == "PermissionRequest" ? permissionTimeout : timeout;
  JsonObject entry{
      {"type", {"command"}}, {"command", {command()}}, {"timeout", {JsonNumber{std::to_string(seconds)}}}};
  JsonObject group{{"hooks", {JsonArray{{std::move(entry)}}}}};
  if (std::ranges::find(toolEvents, event) != toolEvents.end()) group["matcher"] = {std::string("*")};
  return group;
}

JsonObject HookInstaller::withOurs(JsonObject settings) const {
  JsonObject hooks = removingOurs(takeHooks(settings));
  for (const std::string_view event : events) {
    JsonValue& groups = hooks[std::string(event)];
    if (!listOfObjects(groups)) groups = {JsonArray()};
    groups.as<JsonArray>()->emplace_back().value = ourGroup(event);
  }
  settings["hooks"].value = std::move(hooks);
  return settings;
}

JsonObject HookInstaller::withoutOurs(JsonObject settings) {
  JsonObject hooks = removingOurs(takeHooks(settings));
  if (!hooks.empty()) settings["hooks"].value = std::move(hooks);
  return settings;
}

bool HookInstaller::install() const {
  const bool isAbsolute = executable_.starts_with('/');
  if (!isAbsolute || !isValidUtf8(executable_)) {
    complain(writeFailure,
        isAbsolute ? "the path of the program is not valid UTF-8" : "the path of the program is not known");
    return false;
  }
  auto settings = load();
  if (!settings) return false;
  settings->values = withOurs(std::move(settings->values));
  if (!save(std::move(*settings))) return false;
  print(STDOUT_FILENO, "Tarnwick hooks installed in " + path_ + "\nCommand: " + command() + "\n");
  return true;
}

bool HookInstaller::uninstall() const {
  auto settings = load();
  if (!settings) return false;
  settings->values = withoutOurs(std::move(settings->values));
  if (!save(std::move(*settings))) return false;
  print(STDOUT_FILENO, "Tarnwick hooks removed from " + path_ + "\n");
  return true;
}

bool HookInstaller::isInstalled() const {
  std::string text;
  return !readFile(path_, text) && isValidUtf8(text) && text.find("Tarnwick") != text.npos &&
         text.find("--hook") != text.npos;
}

}  // namespace tarnwick
