#pragma once
#include "services/MediaService.h"
#include "ui/View.h"

namespace tarnwick {

/// The cover of what is playing, else the icon of the program that plays it, else a note: a square `size`
/// points wide with corners of `radius` points.
ui::View artworkView(const MediaService& media, double size, double radius);

}  // namespace tarnwick
