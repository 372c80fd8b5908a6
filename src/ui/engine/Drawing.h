#pragma once
#include <QBrush>
#include <QColor>
#include <QPainterPath>
#include <QRectF>

#include "ui/Paint.h"
#include "ui/Path.h"
#include "ui/Shape.h"

/// Our values as the toolkit's.
namespace tarnwick::ui {

QColor toQt(Color color);
QRectF toQt(const Rect& rect);
Rect fromQt(const QRectF& rect);
QPainterPath toQt(const Path& path);
QPainterPath outline(const Shape& shape, Size size);

}  // namespace tarnwick::ui
