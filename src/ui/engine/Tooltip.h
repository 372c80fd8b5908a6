#pragma once
#include "ui/View.h"
#include "ui/engine/SceneInput.h"

namespace tarnwick::ui {

/// The tooltip of the scene, beside the pointer and on the surface of what it explains; nothing while there
/// is none.
View tooltipView(const SceneInput& input);

}  // namespace tarnwick::ui
