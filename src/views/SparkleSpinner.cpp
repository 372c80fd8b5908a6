#include "views/SparkleSpinner.h"

#include <cmath>
#include <vector>

#include "ui/Dynamic.h"

namespace tarnwick {
namespace {

constexpr double frameInterval = 0.1;

/// Made once: the same texts come up again and again, and remember how they are drawn.
const ui::Views& frames() {
  static const ui::Views frames{ui::Text("·"), ui::Text("✢"), ui::Text("✳"), ui::Text("✶"), ui::Text("✻"),
      ui::Text("✽"), ui::Text("✻"), ui::Text("✶"), ui::Text("✳"), ui::Text("✢")};
  return frames;
}

}  // namespace

ui::View sparkleSpinner(Color color) {
  return ui::timeline(frameInterval, false, [=](Date now) {
    const auto frame = size_t(std::fmod(std::floor(now.secondsSince1970 / frameInterval), frames().size()));
    return frames()[frame].font({15, ui::Weight::bold}).foreground(color).frame({.width = 18});
  });
}

}  // namespace tarnwick
