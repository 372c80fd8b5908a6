#include "ui/Description.h"
#include "ui/engine/Element.h"

namespace tarnwick::ui {
namespace {

/// Keeps the frame that another view handed over: its content is laid out at the final size and drawn scaled
/// to the present one.
class MatchElement : public Element {
 public:
  static constexpr ElementKind itsKind{"Match"};
  const ElementKind& kind() const override { return itsKind; }
  bool equals(const Element&) const override { return true; }
  bool scalesContent() const override { return true; }
};

}  // namespace

View View::matchedGeometry(std::string id, Namespace names) const {
  return inside(std::make_shared<MatchElement>()).with([&](Attributes& a) {
    a.match = Attributes::Match{std::move(id), names};
  });
}

}  // namespace tarnwick::ui
