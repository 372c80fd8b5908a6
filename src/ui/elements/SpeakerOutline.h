#pragma once
#include <QPainterPath>
#include <optional>
#include <string_view>

namespace tarnwick::ui {

/// The outline of a loudspeaker symbol, in the square from (0, 0) to (1, 1); none for other names. The font
/// has no more than two waves and moves the loudspeaker for each; here it stands still while waves come and
/// go.
std::optional<QPainterPath> speakerOutline(std::string_view symbol);

}  // namespace tarnwick::ui
