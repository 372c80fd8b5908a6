#include "ui/Dynamic.h"

#include <algorithm>
#include <cmath>
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
  std::optional<Beat> beat() const override { return body_.beat; }
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
      .beat = paused ? std::nullopt : std::optional(Beat{interval})});
}

View everySecond(std::function<View(Date)> body) { return timeline(1, false, std::move(body)); }

View countdown(Date end, std::function<View(int)> body) {
  const auto left = [end](Date now) {
    // A beat may come a little early.
    constexpr double margin = 0.02;
    return int(std::clamp(std::ceil(end - now - margin), 0.0, 1e9));
  };
  return dynamic({.body = [=](const auto&, Date now) { return body(left(now)); }, .beat = Beat{1, end, end}});
}

}  // namespace tarnwick::ui
