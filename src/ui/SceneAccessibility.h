#pragma once

namespace tarnwick::ui {

/// Lets assistive technology find the controls of scenes by role and name, and press them. Further calls
/// do nothing.
void installSceneAccessibility();

}  // namespace tarnwick::ui
