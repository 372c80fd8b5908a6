#include "settings/SettingsWindow.h"

#include <QEvent>
#include <QShortcut>
#include <QVBoxLayout>

#include "base/L10n.h"
#include "settings/SettingsTheme.h"

namespace tarnwick {
namespace {

constexpr QSize windowSize{460, 560};
constexpr int smallestHeight = 240;

class Window : public QWidget {
 public:
  explicit Window(const SettingsContext& context)
      : QWidget(nullptr, Qt::WindowFlags(Qt::Window | Qt::CustomizeWindowHint | Qt::WindowTitleHint |
                                         Qt::WindowSystemMenuHint | Qt::WindowCloseButtonHint)),
        context_(context),
        view_(new SettingsView(context)),
        appearance_(context.appearance.observe([this] { adoptAppearance(); })) {
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(QString::fromStdString(tarnwick::tr("Tarnwick Settings", "Réglages Tarnwick")));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(view_);
    for (const QKeySequence& keys : {QKeySequence(Qt::Key_Escape), QKeySequence(QKeySequence::Close)}) {
      connect(new QShortcut(keys, this), &QShortcut::activated, this, &QWidget::close);
    }
    adoptAppearance();
    // With nothing to be pressed by accident; the keys scroll.
    view_->setFocus();
    setFixedWidth(windowSize.width());
    setMinimumHeight(smallestHeight);
  }

 protected:
  void changeEvent(QEvent* event) override {
    // Whoever comes back may have changed something meanwhile.
    if (event->type() == QEvent::ActivationChange && isActiveWindow()) view_->refresh();
    QWidget::changeEvent(event);
  }

 private:
  void adoptAppearance() {
    const SettingsTheme theme(context_.appearance);
    setStyleSheet(theme.styleSheet());
    // Style sheets keep them from being inherited.
    for (auto* each : findChildren<QCheckBox*>()) each->setPalette(theme.palette());
  }

  const SettingsContext context_;
  SettingsView* const view_;
  const Subscription appearance_;
};

}  // namespace

void SettingsWindow::show(const QScreen* screen) {
  if (!window_) {
    window_ = new Window(context_);
    const QRect available = screen->availableGeometry();
    window_->resize(windowSize.boundedTo({windowSize.width(), available.height() * 9 / 10}));
    window_->move(available.center() - QPoint(window_->width(), window_->height()) / 2);
  }
  window_->show();
  window_->raise();
  window_->activateWindow();
}

}  // namespace tarnwick
