#pragma once
#include <array>
#include <cstddef>

namespace tarnwick {

/// What terminals, and what runs in them, tell the programs inside of where they are.
inline constexpr std::array terminalVariables{"WINDOWID", "TMUX", "TMUX_PANE", "STY", "KITTY_LISTEN_ON",
    "KITTY_WINDOW_ID", "WEZTERM_PANE", "KONSOLE_DBUS_SERVICE", "KONSOLE_DBUS_SESSION", "KONSOLE_DBUS_WINDOW",
    "VSCODE_IPC_HOOK_CLI"};
/// A longer value, in bytes, is none of theirs.
inline constexpr std::size_t longestTerminalValue = 256;

}  // namespace tarnwick
