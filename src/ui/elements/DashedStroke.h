#pragma once
#include <QBrush>
#include <QPainter>
#include <QPainterPath>
#include <vector>

namespace tarnwick::ui {

/// Strokes a path in dashes with flat ends, each by itself: the toolkit's own way lets several threads fill
/// the whole line at once, which costs more than the line.
/// @param pattern lengths of dashes and gaps in turn, in the path's units
/// @param phase where in the pattern the path begins
void strokeDashed(QPainter& painter, const QPainterPath& path, const QBrush& brush, double width,
    const std::vector<double>& pattern, double phase);

}  // namespace tarnwick::ui
