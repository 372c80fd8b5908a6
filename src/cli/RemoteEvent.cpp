#include "cli/RemoteEvent.h"

#include <array>
#include <utility>

#include "base/Characters.h"
#include "cli/HookEvent.h"
#include "json/JsonString.h"

namespace tarnwick {
namespace {

constexpr std::array told{"hook_event_name", "session_id", "cwd", "tool_name", "tool_detail", "question",
    "message", "notification_type", "prompt", "error", "last_assistant_message"};
constexpr size_t longestName = 64, mostBytes = 256;

}  // namespace

std::string remoteLine(const StringMap& event, std::string_view machine) {
  std::string line = "{\"" + std::string(machineKey) + "\":" + jsonString(machine);
  for (const char* key : told) {
    if (const auto value = valueOf(event, key)) line += ",\"" + std::string(key) + "\":" + jsonString(*value);
  }
  return line += "}\n";
}

std::optional<StringMap> readRemoteLine(std::string_view line) {
  const auto event = readHookEvent(
      [line]() mutable { return std::exchange(line, std::string_view()); }, HookEventForm::reduced);
  if (!event) return std::nullopt;
  StringMap remote;
  for (const char* key : told) {
    if (auto value = valueOf(*event, key)) remote[key] = std::move(*value);
  }
  const std::string name = valueOf(*event, machineKey).value_or("");
  const std::string_view machine = firstCharacters(name, longestName, mostBytes);
  remote[machineKey] = machine;
  // A comma for the parts, so that none can be mistaken for two.
  remote["session_id"] =
      "elsewhere," + std::to_string(machine.size()) + "," + std::string(machine) + "," +
      valueOf(remote, "session_id").value_or("default");
  return remote;
}

}  // namespace tarnwick
