#include "base/Records.h"

namespace tarnwick {
namespace {

constexpr std::array<std::string_view, 5> tabNames{"home", "audio", "claude", "tray", "notes"};

template<typename... Cases>
struct Overloaded : Cases... {
  using Cases::operator()...;
};
template<class... Cases>
Overloaded(Cases...) -> Overloaded<Cases...>;

}  // namespace

std::string_view rawValue(Tab tab) { return tabNames[static_cast<size_t>(tab)]; }

std::optional<Tab> tabNamed(std::string_view rawValue) {
  for (const Tab tab : allTabs) {
    if (tarnwick::rawValue(tab) == rawValue) return tab;
  }
  return std::nullopt;
}

std::string Transient::key() const {
  return std::visit(
      Overloaded{
          [](const Hud& hud) -> std::string { return hud.kind == HUDKind::brightness ? "brightness" : "volume"; },
          [](const Power&) -> std::string { return "power"; },
          [](const LowPowerMode&) -> std::string { return "lowpower"; },
          [](const Device& device) { return "device-" + device.name + (device.connected ? "-true" : "-false"); },
      },
      value);
}

}  // namespace tarnwick
