#pragma once

namespace tarnwick {

/// What the notch shows.
enum class Presentation { transient, claude, nowPlaying, idle, banner, expanded };

}  // namespace tarnwick
