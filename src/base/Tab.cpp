#include "base/Tab.h"

namespace tarnwick {

std::string_view rawValue(Tab tab) {
  switch (tab) {
    case Tab::home:
      return "home";
    case Tab::audio:
      return "audio";
    case Tab::claude:
      return "claude";
    case Tab::tray:
      return "tray";
    case Tab::notes:
      return "notes";
  }
  return {};
}

std::optional<Tab> tabNamed(std::string_view rawValue) {
  for (const Tab tab : allTabs) {
    if (tarnwick::rawValue(tab) == rawValue) return tab;
  }
  return std::nullopt;
}

}  // namespace tarnwick
