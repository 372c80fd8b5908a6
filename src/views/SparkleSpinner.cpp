#include "views/SparkleSpinner.h"

#include <array>
#include <cmath>

#include "ui/Dynamic.h"

namespace tarnwick {
namespace {

constexpr double frameInterval = 0.1;
constexpr std::array frames{"·", "✢", "✳", "✶", "✻", "✽", "✻", "✶", "✳", "✢"};

}  // namespace

ui::View sparkleSpinner(Color color) {
  return ui::timeline(frameInterval, false, [=](Date now) {
    const auto frame = size_t(std::fmod(std::floor(now.secondsSince1970 / frameInterval), frames.size()));
    return ui::Text(frames[frame]).font({15, ui::Weight::bold}).foreground(color).frame({.width = 18});
  });
}

}  // namespace tarnwick
