#include "settings/SwitchRow.h"

#include <QPainter>

namespace tarnwick {
namespace {

constexpr int rowHeight = 42, inset = 14, milliseconds = 140;
constexpr QSizeF track{36, 20};
constexpr double knobInset = 2;

QColor mix(const QColor& from, const QColor& to, double amount) {
  const auto between = [amount](int a, int b) { return a + int(amount * (b - a)); };
  return {between(from.red(), to.red()), between(from.green(), to.green()), between(from.blue(), to.blue())};
}

}  // namespace

SwitchRow::SwitchRow(const QString& text) : QCheckBox(text) {
  setFocusPolicy(Qt::TabFocus);
  position_.setDuration(milliseconds);
  position_.setStartValue(0.0);
  position_.setEndValue(1.0);
  position_.setEasingCurve(QEasingCurve::InOutQuad);
  connect(&position_, &QVariantAnimation::valueChanged, this, [this] { update(); });
  connect(this, &QCheckBox::toggled, this, [this](bool on) {
    position_.setDirection(on ? QVariantAnimation::Forward : QVariantAnimation::Backward);
    position_.start();
    if (!isVisible()) position_.setCurrentTime(on ? milliseconds : 0);
  });
}

QSize SwitchRow::sizeHint() const {
  return {fontMetrics().horizontalAdvance(text()) + 3 * inset + int(track.width()), rowHeight};
}

void SwitchRow::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const QRect content = rect().adjusted(inset, 0, -inset, 0);
  painter.setPen(palette().color(QPalette::WindowText));
  painter.drawText(content, Qt::AlignLeft | Qt::AlignVCenter, text());

  const double on = position_.currentValue().toDouble();
  const QRectF place({content.right() + 1 - track.width(), (height() - track.height()) / 2}, track);
  painter.setPen(Qt::NoPen);
  painter.setBrush(mix(palette().color(QPalette::Mid), palette().color(QPalette::Highlight), on));
  painter.drawRoundedRect(place, track.height() / 2, track.height() / 2);
  const double knob = track.height() - 2 * knobInset;
  const QRectF circle(
      place.x() + knobInset + on * (track.width() - track.height()), place.y() + knobInset, knob, knob);
  painter.setBrush(QColor(0, 0, 0, 40));
  painter.drawEllipse(circle.translated(0, 0.5));
  painter.setBrush(Qt::white);
  painter.drawEllipse(circle);
  if (hasFocus()) {
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(palette().color(QPalette::Highlight), 2));
    painter.drawRoundedRect(QRectF(rect()).adjusted(3, 3, -3, -3), 7, 7);
  }
}

}  // namespace tarnwick
