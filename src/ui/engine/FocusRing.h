#pragma once
#include "ui/View.h"
#include "ui/engine/KeyboardFocus.h"

namespace tarnwick::ui {

/// The ring around the control that the keyboard is at; fills the scene.
View focusRing(const KeyboardFocus& focus);

}  // namespace tarnwick::ui
