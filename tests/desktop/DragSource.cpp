// A program of somebody else's, to drag a file from: drag-source FILE READY. It makes the file READY once its
// window is to be seen, and READY.accepted once the place under the pointer would take the file.
#include <QApplication>
#include <QDrag>
#include <QFile>
#include <QMimeData>
#include <QMouseEvent>
#include <QUrl>
#include <QWidget>

namespace {

void make(const QString& path) { QFile(path).open(QIODevice::WriteOnly); }

class Source : public QWidget {
 public:
  Source(const QString& file, const QString& ready) : file_(file), ready_(ready) {}

 protected:
  void paintEvent(QPaintEvent*) override { make(ready_); }

  void mousePressEvent(QMouseEvent* event) override { pressed_ = event->pos(); }

  void mouseMoveEvent(QMouseEvent* event) override {
    const int way = (event->pos() - pressed_).manhattanLength();
    if (dragging_ || !(event->buttons() & Qt::LeftButton) || way < QApplication::startDragDistance()) return;
    dragging_ = true;
    auto* data = new QMimeData;
    data->setUrls({QUrl::fromLocalFile(file_)});
    auto* drag = new QDrag(this);
    drag->setMimeData(data);
    connect(drag, &QDrag::actionChanged, this, [this](Qt::DropAction action) {
      if (action == Qt::CopyAction) make(ready_ + ".accepted");
    });
    drag->exec(Qt::CopyAction);
  }

 private:
  QString file_, ready_;
  QPoint pressed_;
  bool dragging_ = false;
};

}  // namespace

int main(int count, char** arguments) {
  QApplication application(count, arguments);
  Source source(QString::fromLocal8Bit(arguments[1]), QString::fromLocal8Bit(arguments[2]));
  source.setWindowFlag(Qt::BypassWindowManagerHint);
  source.setGeometry(100, 500, 200, 100);
  source.show();
  return QApplication::exec();
}
