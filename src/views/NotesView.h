#pragma once
#include "services/NotesStore.h"
#include "ui/TextEditor.h"
#include "ui/View.h"

namespace tarnwick {

/// The notes' page: one text that is kept.
ui::View notesView(NotesStore& notes, const ui::TextMemory& memory);

}  // namespace tarnwick
