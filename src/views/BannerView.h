#pragma once
#include "base/Banner.h"
#include "ui/View.h"

namespace tarnwick {

/// The card below the strip: a badge that pops in, a title and a line of text.
ui::View bannerView(const Banner& banner);

}  // namespace tarnwick
