#pragma once
#include <QScreen>
#include <QWindow>

struct wl_display;
struct wl_output;
struct wl_seat;
struct wl_surface;

namespace tarnwick {

/// What the toolkit has of the compositor; null where it has nothing.
wl_display* toolkitDisplay();
wl_seat* toolkitSeat();
wl_output* outputOf(QScreen& screen);
wl_surface* surfaceOf(QWindow& window);
/// The name of the output's screen; empty when it has none.
std::string screenOf(wl_output* output);

}  // namespace tarnwick
