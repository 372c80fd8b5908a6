#include "ui/Dynamic.h"

#include <memory>
#include <utility>

#include "ui/engine/Node.h"
#include "ui/engine/Scene.h"

namespace tarnwick::ui {
namespace {

struct DynamicState : ElementState {
  explicit DynamicState(std::shared_ptr<void> itsLocal) : local(std::move(itsLocal)) {}
  const std::shared_ptr<void> local;
};

/// Stands for the view that its body makes.
class DynamicElement : public WrapperElement {
 public:
  explicit DynamicElement(DynamicBody body) : body_(std::move(body)) {}
  static constexpr ElementKind itsKind{"Dynamic"};
  const ElementKind& kind() const override { return itsKind; }
  bool equals(const Element&) const override { return false; }
  bool affectsLayout(const Element&) const override { return false; }
  std::unique_ptr<ElementState> makeState() const override {
    return std::make_unique<DynamicState>(body_.makeState ? body_.makeState() : nullptr);
  }
  double interval() const override { return body_.interval; }
  void build(Node& node, const Views&, Content& content) const override {
    content.show({body_.body(node.state<DynamicState>().local, node.scene.now())});
  }

 private:
  DynamicBody body_;
};

}  // namespace

View dynamic(DynamicBody body) { return View(std::make_shared<DynamicElement>(std::move(body))); }

View observing(std::function<View()> body) {
  return dynamic({.body = [body = std::move(body)](const auto&, Date) { return body(); }});
}

View timeline(double interval, bool paused, std::function<View(Date)> body) {
  return dynamic({.body = [body = std::move(body)](const auto&, Date now) { return body(now); },
                  .interval = paused ? 0 : interval});
}

View everySecond(std::function<View(Date)> body) { return timeline(1, false, std::move(body)); }

}  // namespace tarnwick::ui
