#pragma once
#include "base/Color.h"
#include "ui/Path.h"

class QPainter;

namespace tarnwick::ui {

/// A surface to draw on, in points.
class Canvas {
 public:
  explicit Canvas(QPainter& painter) : painter_(painter) {}
  void fill(const Rect& rect, Color color);
  void fill(const Path& path, Color color);

 private:
  QPainter& painter_;
};

}  // namespace tarnwick::ui
