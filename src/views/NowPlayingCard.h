#pragma once
#include "services/MediaService.h"
#include "ui/View.h"

namespace tarnwick {

/// What is playing, with its cover, and what can be done to it.
ui::View nowPlayingCard(MediaService& media, ui::Namespace names);

}  // namespace tarnwick
