#include "linux/wayland/SwayWindows.h"

#include <poll.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <map>

#include "dbus/LocalSocket.h"
#include "json/JsonValue.h"

namespace tarnwick {
namespace {

using Clock = std::chrono::steady_clock;

constexpr auto patience = std::chrono::milliseconds(100);
constexpr std::string_view magic = "i3-ipc";
constexpr uint32_t runCommand = 0, getTree = 4;
constexpr size_t longestAnswer = 16 << 20;

const JsonArray& listIn(const JsonObject& node, const char* key) {
  static const JsonArray none;
  const auto* list = memberOf<JsonArray>(node, key);
  return list ? *list : none;
}

/// Adds the windows of a node and of those in it by their process. Those that had the keyboard last come
/// first.
void collect(const JsonObject& node, std::multimap<int64_t, uint32_t>& windows) {
  const auto* process = memberOf<JsonNumber>(node, "pid");
  const auto* id = memberOf<JsonNumber>(node, "id");
  const auto number = process ? process->integer() : std::nullopt, window = id ? id->integer() : std::nullopt;
  if (number && window && *number > 0 && *window > 0) windows.emplace(*number, uint32_t(*window));
  std::map<int64_t, const JsonObject*> nodes;
  for (const char* key : {"nodes", "floating_nodes"}) {
    for (const JsonValue& each : listIn(node, key)) {
      const auto* object = each.as<JsonObject>();
      const auto* name = object ? memberOf<JsonNumber>(*object, "id") : nullptr;
      if (name) nodes[name->integer().value_or(0)] = object;
    }
  }
  for (const JsonValue& each : listIn(node, "focus")) {
    const auto* name = each.as<JsonNumber>();
    const auto found = nodes.find(name ? name->integer().value_or(0) : 0);
    if (found == nodes.end()) continue;
    collect(*found->second, windows);
    nodes.erase(found);
  }
  for (const auto& [name, object] : nodes) collect(*object, windows);
}

/// Reads or writes all of it. @return false when that fails or takes too long
template<typename Transfer>
bool transferAll(int socket, short event, size_t length, Clock::time_point end, Transfer transfer) {
  for (size_t done = 0; done < length;) {
    const auto rest = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now()).count();
    pollfd ready{socket, event, 0};
    if (rest <= 0 || ::poll(&ready, 1, static_cast<int>(rest)) != 1) return false;
    const ssize_t count = transfer(done);
    if (count <= 0) return false;
    done += static_cast<size_t>(count);
  }
  return true;
}

}  // namespace

std::optional<uint32_t> SwayWindows::windowOf(const std::vector<int32_t>& processes) const {
  const auto answer = ask(getTree, "");
  const auto tree = answer ? parseJson(*answer) : std::nullopt;
  const auto* root = tree ? tree->as<JsonObject>() : nullptr;
  if (!root) return std::nullopt;
  std::multimap<int64_t, uint32_t> windows;
  collect(*root, windows);
  for (const int32_t process : processes) {
    if (const auto found = windows.lower_bound(process); found != windows.end() && found->first == process)
      return found->second;
  }
  return std::nullopt;
}

void SwayWindows::bringForward(uint32_t window) const {
  ask(runCommand, "[con_id=" + std::to_string(window) + "] focus");
}

std::optional<std::string> SwayWindows::ask(uint32_t type, std::string_view payload) const {
  const Descriptor socket = connectTo({socket_}, SOCK_STREAM);
  if (socket < 0) return std::nullopt;
  const auto end = Clock::now() + patience;
  uint32_t numbers[2] = {static_cast<uint32_t>(payload.size()), type};
  std::string message(magic);
  message.append(reinterpret_cast<const char*>(numbers), sizeof numbers).append(payload);
  if (!transferAll(socket, POLLOUT, message.size(), end, [&](size_t done) {
        return ::send(socket, message.data() + done, message.size() - done, MSG_NOSIGNAL);
      }))
    return std::nullopt;
  const auto read = [&](size_t length) {
    std::string bytes(length, '\0');
    const bool isWhole = transferAll(socket, POLLIN, length, end,
        [&](size_t done) { return ::recv(socket, bytes.data() + done, length - done, 0); });
    return isWhole ? std::optional(bytes) : std::nullopt;
  };
  const auto header = read(magic.size() + sizeof numbers);
  if (!header || !header->starts_with(magic)) return std::nullopt;
  std::memcpy(numbers, header->data() + magic.size(), sizeof numbers);
  return numbers[1] == type && numbers[0] <= longestAnswer ? read(numbers[0]) : std::nullopt;
}

}  // namespace tarnwick
