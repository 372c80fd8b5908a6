#include "platform/Roles.h"

#include <xcb/xcb.h>

#include <QApplication>
#include <QDrag>
#include <QMimeData>
#include <QMouseEvent>
#include <QPainter>
#include <QWidget>
#include <cstdio>
#include <cstring>
#include <string_view>

namespace tarnwick {
namespace {

void say(const QByteArray& line) {
  std::puts(line.constData());
  std::fflush(stdout);
}

class OtherWindow : public QWidget {
 public:
  using QWidget::QWidget;

 protected:
  void paintEvent(QPaintEvent*) override {
    QPainter(this).fillRect(rect(), QColor(0, 255, 0));
    if (!std::exchange(ready_, true)) say("ready");
  }
  void mousePressEvent(QMouseEvent*) override { say("pressed"); }

 private:
  bool ready_ = false;
};

class DragSource : public OtherWindow {
 public:
  DragSource(QString type, QByteArray content) : type_(std::move(type)), data_(std::move(content)) {}

 protected:
  void mousePressEvent(QMouseEvent* event) override { pressed_ = event->pos(); }
  void mouseMoveEvent(QMouseEvent* event) override {
    if ((event->pos() - pressed_).manhattanLength() < QApplication::startDragDistance()) return;
    if (std::exchange(dragging_, true)) return;
    auto* mime = new QMimeData;
    mime->setData(type_, data_);
    auto* drag = new QDrag(this);
    drag->setMimeData(mime);
    connect(drag, &QDrag::actionChanged, this, [](Qt::DropAction action) {
      if (action == Qt::CopyAction) say("accepted");
    });
    say("dragging");
    const Qt::DropAction action = drag->exec(Qt::CopyAction | Qt::MoveAction);
    say("dropped " +
        QByteArray(action == Qt::CopyAction     ? "copy"
                   : action == Qt::IgnoreAction ? "nothing"
                                                : "?"));
    dragging_ = false;
  }

 private:
  QString type_;
  QByteArray data_;
  QPoint pressed_;
  bool dragging_ = false;
};

/// Writes down what is dropped on it.
class DropTarget : public OtherWindow {
 public:
  DropTarget() { setAcceptDrops(true); }

 protected:
  void dragEnterEvent(QDragEnterEvent* event) override {
    event->acceptProposedAction();
    say("entered");
  }
  void dropEvent(QDropEvent* event) override {
    event->acceptProposedAction();
    say(event->mimeData()->data("text/uri-list").simplified());
  }
};

/// Tells what kind of window it is, and what strip at the top it keeps free, before it is shown.
void declare(QWidget& widget, const char* kind, uint32_t top = 0) {
  xcb_connection_t* connection = qApp->nativeInterface<QNativeInterface::QX11Application>()->connection();
  const auto atom = [&](const char* name) {
    auto* reply = xcb_intern_atom_reply(
        connection, xcb_intern_atom(connection, 0, static_cast<uint16_t>(std::strlen(name)), name), nullptr);
    const xcb_atom_t value = reply->atom;
    std::free(reply);
    return value;
  };
  const auto window = static_cast<xcb_window_t>(widget.winId());
  const xcb_atom_t type = atom(kind);
  xcb_change_property(
      connection, XCB_PROP_MODE_REPLACE, window, atom("_NET_WM_WINDOW_TYPE"), XCB_ATOM_ATOM, 32, 1, &type);
  const auto left = static_cast<uint32_t>(widget.x());
  const uint32_t strut[12] = {
      0, 0, top, 0, 0, 0, 0, 0, left, left + static_cast<uint32_t>(widget.width()) - 1};
  xcb_change_property(connection, XCB_PROP_MODE_REPLACE, window, atom("_NET_WM_STRUT_PARTIAL"),
      XCB_ATOM_CARDINAL, 32, 12, strut);
  xcb_flush(connection);
}

}  // namespace

int playRole(int argc, char** argv) {
  if (argc < 6) return -1;
  const std::string_view role = argv[1];
  if (role != "--window" && role != "--unmanaged" && role != "--drag" && role != "--drop") return -1;
  // Other programs have their own idea of pixels; here it is the server's.
  qunsetenv("QT_SCREEN_SCALE_FACTORS");
  int count = 1;
  QApplication application(count, argv);
  const auto number = [&](int index) { return std::atoi(argv[index]); };

  if (role == "--drag") {
    DragSource source(argv[2], argv[3]);
    source.setWindowFlags(Qt::BypassWindowManagerHint);
    source.setGeometry(number(4), number(5), 100, 100);
    source.show();
    return QApplication::exec();
  }
  if (role == "--drop") {
    DropTarget target;
    target.setGeometry(number(2), number(3), number(4), number(5));
    target.show();
    return QApplication::exec();
  }
  OtherWindow window;
  window.setWindowTitle(argv[2]);
  window.setGeometry(number(3), number(4), number(5), number(6));
  const std::string_view kind = argc > 7 ? argv[7] : "";
  if (role == "--unmanaged") window.setWindowFlags(Qt::BypassWindowManagerHint);
  if (kind == "dock") declare(window, "_NET_WM_WINDOW_TYPE_DOCK", static_cast<uint32_t>(number(8)));
  if (kind == "desktop") declare(window, "_NET_WM_WINDOW_TYPE_DESKTOP");
  if (kind == "maximized") window.setWindowFlags(Qt::FramelessWindowHint);
  kind == "fullscreen" ? window.showFullScreen()
  : kind == "maximized"
      ? window.showMaximized()
      : window.show();
  return QApplication::exec();
}

}  // namespace tarnwick
