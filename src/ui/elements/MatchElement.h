#pragma once
#include "ui/engine/Element.h"

namespace tarnwick::ui {

/// Keeps the frame that another view handed over: its content is laid out at the final size and drawn scaled
/// to the present one.
class MatchElement : public Element {
 public:
  static constexpr ElementKind itsKind{"Match"};
  const ElementKind& kind() const override { return itsKind; }
  bool equals(const Element&) const override { return true; }
};

}  // namespace tarnwick::ui
