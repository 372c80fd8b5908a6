#include "ui/Path.h"

namespace tarnwick::ui {

void Path::addRect(const Rect& rect) {
  moveTo({rect.x, rect.y});
  lineTo({rect.right(), rect.y});
  lineTo({rect.right(), rect.bottom()});
  lineTo({rect.x, rect.bottom()});
  close();
}

void Path::addEllipse(const Rect& rect) {
  // Distance of the control points that makes four cubic curves closest to an ellipse.
  constexpr double kappa = 0.5522847498;
  const double rx = rect.width / 2, ry = rect.height / 2, cx = rect.midX(), cy = rect.midY();
  const double kx = rx * kappa, ky = ry * kappa;
  moveTo({cx + rx, cy});
  cubicTo({cx + rx, cy + ky}, {cx + kx, cy + ry}, {cx, cy + ry});
  cubicTo({cx - kx, cy + ry}, {cx - rx, cy + ky}, {cx - rx, cy});
  cubicTo({cx - rx, cy - ky}, {cx - kx, cy - ry}, {cx, cy - ry});
  cubicTo({cx + kx, cy - ry}, {cx + rx, cy - ky}, {cx + rx, cy});
  close();
}

}  // namespace tarnwick::ui
