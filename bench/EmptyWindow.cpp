// The least that a window like the overlay's costs with its toolkit: as large, translucent, black at the top.
#include <QApplication>
#include <QPainter>
#include <QScreen>
#include <QWidget>

namespace {

class EmptyWindow : public QWidget {
 protected:
  void paintEvent(QPaintEvent*) override {
    QPainter(this).fillRect((width() - 190) / 2, 0, 190, 24, Qt::black);
  }
};

}  // namespace

int main(int count, char** arguments) {
  QApplication application(count, arguments);
  EmptyWindow window;
  window.setWindowFlags(
      Qt::BypassWindowManagerHint | Qt::FramelessWindowHint | Qt::Tool | Qt::WindowStaysOnTopHint);
  window.setAttribute(Qt::WA_TranslucentBackground);
  window.setAttribute(Qt::WA_ShowWithoutActivating);
  window.setGeometry((QApplication::primaryScreen()->geometry().width() - 940) / 2, 0, 940, 380);
  window.show();
  return QApplication::exec();
}
