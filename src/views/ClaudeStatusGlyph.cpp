#include "views/ClaudeStatusGlyph.h"

#include "ui/Dynamic.h"
#include "views/CrabView.h"
#include "views/SparkleSpinner.h"

namespace tarnwick {

using namespace ui;

View raisedHand() { return Symbol("hand.raised.fill").foreground(colors::yellow).pulse(); }

CrabMood crabMood(const ClaudeService& claude) {
  if (claude.anyWaiting()) return CrabMood::waiting;
  return claude.workingCount() > 0 ? CrabMood::working : CrabMood::idle;
}

View statusCrab(const ClaudeService& claude) {
  return observing([&claude] { return crabView(crabMood(claude)); });
}

View claudeStatusGlyph(const ClaudeService& claude) {
  return observing([&claude] {
    if (claude.anyWaiting()) {
      return raisedHand().font({12, Weight::bold}).id("waiting").transition(Transition::opacity());
    }
    const int count = claude.workingCount();
    View number;
    if (count >= 2) {
      number =
          Text(std::to_string(count))
              .font({10, Weight::semibold, Design::rounded})
              .foreground(white(0.7))
              .contentTransition(ContentTransition::numericText)
              .transition(Transition::opacity());
    }
    return HStack({.spacing = 1}, {sparkleSpinner(crabOrange), number})
        .id("working")
        .transition(Transition::opacity());
  });
}

}  // namespace tarnwick
