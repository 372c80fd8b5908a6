#pragma once
#include <unistd.h>

#include <functional>

#include "cli/NotificationPoster.h"
#include "cli/PermissionAsker.h"

/// The hook relay: what Claude Code runs at each of its hook events.
namespace tarnwick::HookCLI {

/// Under this name the overlay hears of hook events.
inline constexpr std::string_view notificationName = eventNotification;

/// Reads one hook event from `input` to its end and posts it; what is no event posts nothing. Prints nothing.
/// @param asker is asked for a permission in place of the post; then the answer, if there is one, is written
/// to `output` in Claude Code's form
void run(NotificationPoster& poster, PermissionAsker* asker = nullptr, int input = STDIN_FILENO,
    int output = STDOUT_FILENO);

/// Posts a scripted session of six events; `sleep` waits that many seconds between them.
void demo(NotificationPoster& poster, const std::function<void(unsigned seconds)>& sleep);

}  // namespace tarnwick::HookCLI
