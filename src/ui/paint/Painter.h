#pragma once
#include <QImage>
#include <QTransform>

#include "ui/engine/Node.h"
#include "ui/engine/Scene.h"

class QPainter;

namespace tarnwick::ui {

/// Paints what lies in `area` (points) of the scene into `target`, which shows it at the scene's pixel ratio
/// with its top left corner at `origin` (pixels).
void paint(Scene& scene, QImage& target, const Rect& area, Point origin = {});

/// The whole scene as a picture of its own, at its pixel ratio. Needs no window.
QImage picture(Scene& scene);

/// A view by itself, without the effects of those around it, as a picture of `pixelRatio` pixels a point.
QImage pictureOf(Node& node, double pixelRatio);

/// Draws presented nodes into a picture.
class Painter {
 public:
  explicit Painter(double pixelRatio) : ratio_(pixelRatio) {}
  /// Clears and paints the part `area` (points) of the scene, whose corner lies at `origin` (pixels) of
  /// `target`.
  void paint(Node& root, QImage& target, const Rect& area, Point origin);
  /// The content of a node, in its own coordinates and without its effects.
  QImage render(Node& node, const Rect& rect, double scale);

 private:
  /// What is drawn on: from the scene's points to its pixels.
  struct Surface {
    QImage& image;
    QPainter& painter;
    QTransform toPixels;
    /// In scene points: nothing outside needs drawing.
    Rect clip;
    /// Nothing has been drawn yet.
    bool blank = true;
  };
  bool isBlurred(const Node& node) const;
  void draw(Node& node, Surface& surface, double opacity);
  void drawContent(Node& node, Surface& surface, double opacity);
  void drawInside(Node& node, Surface& surface, double opacity);
  void drawClipped(Node& node, Surface& surface, double opacity);
  void drawGroup(Node& node, Surface& surface, double opacity);
  void drawShadows(Node& node, Surface& surface, double opacity, bool beneath);
  void drawFocusRing(const Node& node, Surface& surface, double opacity);
  void drawInsideClip(Node& node, Surface& surface);
  void cutCorners(const Node& node, QPainter& painter, const QTransform& toPixels);

  double ratio_;
};

}  // namespace tarnwick::ui
