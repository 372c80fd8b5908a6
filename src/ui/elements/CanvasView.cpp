#include <QPainter>

#include "ui/Canvas.h"
#include "ui/engine/Drawing.h"
#include "ui/engine/Element.h"

namespace tarnwick::ui {
namespace {

class CanvasElement : public Element {
 public:
  CanvasElement(AnyValue input, std::function<void(Canvas&, Size)> draw)
      : input_(std::move(input)), draw_(std::move(draw)) {}
  static constexpr ElementKind itsKind{"Canvas"};
  const ElementKind& kind() const override { return itsKind; }
  bool equals(const Element& other) const override {
    return static_cast<const CanvasElement&>(other).input_ == input_;
  }
  bool affectsLayout(const Element&) const override { return false; }
  bool draws() const override { return true; }
  void draw(DrawContext& context) const override {
    Canvas canvas(context.painter);
    draw_(canvas, context.size);
  }

 private:
  AnyValue input_;
  std::function<void(Canvas&, Size)> draw_;
};

}  // namespace

void Canvas::fill(const Rect& rect, Color color) { painter_.fillRect(toQt(rect), toQt(color)); }

void Canvas::fill(const Path& path, Color color) { painter_.fillPath(toQt(path), toQt(color)); }

View CanvasView(AnyValue input, std::function<void(Canvas&, Size)> draw) {
  return View(std::make_shared<CanvasElement>(std::move(input), std::move(draw)));
}

}  // namespace tarnwick::ui
