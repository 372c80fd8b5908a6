#pragma once
#include <QCheckBox>
#include <QVariantAnimation>

namespace tarnwick {

/// A whole row of a form: its text on the left, a switch on the right. For keyboards and assistive technology
/// it is the toolkit's check box. The colours are the palette's: `Highlight` when it is on, else `Mid`.
class SwitchRow : public QCheckBox {
 public:
  explicit SwitchRow(const QString& text);

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override { return sizeHint(); }

 protected:
  bool hitButton(const QPoint& position) const override { return rect().contains(position); }
  void paintEvent(QPaintEvent*) override;

 private:
  /// From off to on, 0…1.
  QVariantAnimation position_;
};

}  // namespace tarnwick
