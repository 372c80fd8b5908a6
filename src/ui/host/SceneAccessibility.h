#pragma once

namespace tarnwick::ui {

class SceneWidget;

/// Lets assistive technology find the controls of scenes by role and name, and press them. Further calls
/// do nothing.
void installSceneAccessibility();

/// Tells assistive technology which controls have come, gone or changed in a scene. Costs nothing while there
/// is none.
void tellAssistiveTechnology(SceneWidget& widget);

}  // namespace tarnwick::ui
