#pragma once
#include "ui/SceneInput.h"
#include "ui/View.h"

namespace tarnwick::ui {

/// The tooltip of the scene, beside the pointer and inside the scene's bounds; nothing while there is none.
View tooltipView(const SceneInput& input);

}  // namespace tarnwick::ui
