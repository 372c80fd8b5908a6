#pragma once
#include <array>
#include <optional>
#include <string_view>

namespace tarnwick {

/// The expanded body's tabs, in the order of the tab bar.
enum class Tab { home, audio, claude, tray, notes };
inline constexpr std::array allTabs{Tab::home, Tab::audio, Tab::claude, Tab::tray, Tab::notes};
/// "home", "audio", "claude", "tray" or "notes".
std::string_view rawValue(Tab tab);
/// The tab with exactly that raw value.
std::optional<Tab> tabNamed(std::string_view rawValue);

}  // namespace tarnwick
