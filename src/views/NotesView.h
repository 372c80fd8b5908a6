#pragma once
#include "services/NotesStore.h"
#include "ui/View.h"

namespace tarnwick {

/// The notes' page: one text that is kept.
ui::View notesView(NotesStore& notes);

}  // namespace tarnwick
