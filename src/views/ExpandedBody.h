#pragma once
#include "core/NotchModel.h"
#include "ui/TextEditor.h"
#include "ui/View.h"

namespace tarnwick {

/// The page of the selected tab, below the strip of the open notch. The cover on the home page has the
/// matched geometry "art" of `names`; `notes` remembers what the notes' editor knows.
ui::View expandedBody(NotchModel& model, ui::Namespace names, const ui::TextMemory& notes);

}  // namespace tarnwick
