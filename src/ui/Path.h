#pragma once
#include <vector>

#include "base/Geometry.h"

namespace tarnwick::ui {

/// An outline of lines and curves, in points.
class Path {
 public:
  enum class Verb { move, line, quad, cubic, close };
  struct Element {
    Verb verb;
    /// Control points first, the end point last; unused ones are (0, 0).
    Point points[3];
  };

  void moveTo(Point p) { elements_.push_back({Verb::move, {p}}); }
  void lineTo(Point p) { elements_.push_back({Verb::line, {p}}); }
  void quadTo(Point control, Point end) { elements_.push_back({Verb::quad, {control, end}}); }
  void cubicTo(Point a, Point b, Point end) { elements_.push_back({Verb::cubic, {a, b, end}}); }
  void close() { elements_.push_back({Verb::close, {}}); }
  void addRect(const Rect& rect);
  /// Clockwise from three o'clock.
  void addEllipse(const Rect& rect);

  const std::vector<Element>& elements() const { return elements_; }

 private:
  std::vector<Element> elements_;
};

}  // namespace tarnwick::ui
