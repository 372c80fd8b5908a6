#include <algorithm>
#include <cstdint>

#include "Check.h"
#include "cli/HookInstaller.h"

using namespace tarnwick;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::string error;
  auto json = parseJson({reinterpret_cast<const char*>(data), size}, error);
  check(json || !error.empty(), "what cannot be read is told");
  if (!json) return 0;
  const auto text = writeJson(*json);
  check(parseJson(text) == json, "what was read is written whole");
  const auto* settings = json->as<JsonObject>();
  if (!settings) return 0;

  const HookInstaller installer("/home", "/it's/Tarnwick");
  const JsonObject installed = installer.withOurs(*settings);
  const JsonObject uninstalled = HookInstaller::withoutOurs(installed);
  check(installer.withOurs(installed) == installed, "installing twice changes nothing");
  check(HookInstaller::withoutOurs(uninstalled) == uninstalled, "uninstalling twice changes nothing");
  check(installer.withOurs(uninstalled) == installed, "installing again gives the same");

  for (const auto& [key, value] : *settings) {
    if (key != "hooks") check(uninstalled.at(key) == value, "the other settings are kept");
  }
  const auto found = settings->find("hooks");
  const auto* hooks = found == settings->end() ? nullptr : found->second.as<JsonObject>();
  if (!hooks) return 0;
  for (const auto& [event, groups] : HookInstaller::removingOurs(*hooks)) {
    const auto* list = groups.as<JsonArray>();
    bool isKept =
        std::find(installer.events.begin(), installer.events.end(), event) == installer.events.end();
    if (list)
      isKept = isKept || std::all_of(list->begin(), list->end(), [](auto& group) {
        return group.template as<JsonObject>();
      });
    if (isKept)
      check(uninstalled.at("hooks").as<JsonObject>()->at(event) == groups, "the user's hooks are kept");
  }
  return 0;
}
