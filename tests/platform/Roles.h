#pragma once

namespace tarnwick {

/// Other programs of the desktop, played by this test program when its first argument names a role. Each
/// prints "ready" once its window is on the screen.
///
/// --window TITLE X Y WIDTH HEIGHT [fullscreen | maximized | desktop | dock TOP-STRUT]   a coloured window
/// (0x00ff00) without a frame that prints
///                                    "pressed" for each button press it gets
/// --unmanaged TITLE X Y WIDTH HEIGHT a window that no window manager knows: a menu, or a screen locker
/// --drag TYPE DATA X Y               a window of 100 × 100 that drags DATA when the pointer is dragged in
/// it. It
///                                    prints "dragging", "accepted" where a drop would copy, and "dropped
///                                    ACTION"
///
/// --drop X Y WIDTH HEIGHT            a window that prints the list of files that is dropped on it
///
/// @return the exit status; -1 when the arguments name no role
int playRole(int argc, char** argv);

}  // namespace tarnwick
