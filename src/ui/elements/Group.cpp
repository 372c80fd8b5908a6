#include "ui/View.h"
#include "ui/engine/Node.h"

namespace tarnwick::ui {
namespace {

class GroupElement : public WrapperElement {
 public:
  static constexpr ElementKind itsKind{"Group"};
  const ElementKind& kind() const override { return itsKind; }
  bool equals(const Element&) const override { return true; }
};

}  // namespace

View Group(View content) {
  if (content.isEmpty()) return content;
  return View(std::make_shared<GroupElement>(), {std::move(content)});
}

}  // namespace tarnwick::ui
