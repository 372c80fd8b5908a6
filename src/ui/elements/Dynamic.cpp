#include "ui/Dynamic.h"

#include <memory>
#include <vector>

#include "ui/engine/Node.h"
#include "ui/engine/Scene.h"

namespace tarnwick::ui {
namespace {

struct DynamicState : ElementState {
  ~DynamicState() override {
    if (cell) cell->invalidate = nullptr;
  }
  std::shared_ptr<StateCell> cell;
  std::vector<const ObservableObject*> observed;
  std::vector<Subscription> subscriptions;
};

/// Stands for the view that its body makes.
class DynamicElement : public WrapperElement {
 public:
  explicit DynamicElement(DynamicBody body) : body_(std::move(body)) {}
  static constexpr ElementKind itsKind{"Dynamic"};
  const ElementKind& kind() const override { return itsKind; }
  bool equals(const Element&) const override { return false; }
  bool affectsLayout(const Element&) const override { return false; }
  std::unique_ptr<ElementState> makeState() const override { return std::make_unique<DynamicState>(); }
  double interval() const override { return body_.interval; }

  void build(Node& node, const Views&, Content& content) const override {
    auto& state = node.state<DynamicState>();
    if (body_.makeState && !state.cell) {
      state.cell = body_.makeState();
      state.cell->invalidate = [&node] { node.renew(); };
    }
    if (state.observed != body_.observed) {
      state.observed = body_.observed;
      state.subscriptions.clear();
      for (const ObservableObject* object : body_.observed) {
        state.subscriptions.push_back(object->observe([&node] { node.renew(); }));
      }
    }
    content.show({body_.body(state.cell, node.scene.now())});
  }

 private:
  DynamicBody body_;
};

}  // namespace

View dynamic(DynamicBody body) { return View(std::make_shared<DynamicElement>(std::move(body))); }

View observing(std::vector<const ObservableObject*> objects, std::function<View()> body) {
  return dynamic({.body = [body = std::move(body)](const auto&, Date) { return body(); },
                  .observed = std::move(objects)});
}

View timeline(double interval, bool paused, std::function<View(Date)> body) {
  return dynamic({.body = [body = std::move(body)](const auto&, Date now) { return body(now); },
                  .interval = paused ? 0 : interval});
}

View everySecond(std::function<View(Date)> body) { return timeline(1, false, std::move(body)); }

}  // namespace tarnwick::ui
