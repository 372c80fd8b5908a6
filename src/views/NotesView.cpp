#include "views/NotesView.h"

#include "base/L10n.h"
#include "ui/Dynamic.h"
#include "ui/TextEditor.h"

namespace tarnwick {

using namespace ui;

namespace {

/// Between the field's edge and what is written in it.
constexpr double beside = 15, above = 10;

View editor(NotesStore& notes, const TextMemory& memory, State<bool> focused) {
  return observing([&notes, memory, focused] {
    View placeholder;
    if (notes.text().empty()) {
      placeholder =
          Text(tr("Quick note…", "Note rapide…"))
              .foreground(white(0.3))
              .allowsHitTesting(false)
              .id("placeholder");
    }
    return ZStack(UnitPoint::topLeading,
        {TextEditor({.name = tr("Notes", "Notes"),
             .text = notes.sharedText(),
             .changed = [&notes](const SharedText& text) { notes.setText(text); },
             .focus = focused,
             .memory = memory}),
            placeholder})
        .font({13})
        .padding(Edge::horizontal, beside)
        .padding(Edge::vertical, above);
  });
}

}  // namespace

View notesView(NotesStore& notes, const TextMemory& memory) {
  return stateful(false, [&notes, memory](State<bool> focused) {
    const Shape field = RoundedRectangle(14);
    return editor(notes, memory, focused)
        .background(field.fill(white(focused ? 0.08 : 0.05)))
        .overlay(field.stroke(white(focused ? 0.18 : 0)).allowsHitTesting(false))
        .animation(easeOut(0.2), focused.get());
  });
}

}  // namespace tarnwick
