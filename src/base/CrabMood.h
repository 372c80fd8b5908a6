#pragma once

namespace tarnwick {

/// The mascot's moods.
enum class CrabMood { idle, working, waiting, happy };

}  // namespace tarnwick
