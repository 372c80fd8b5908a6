#include "linux/display/NotchWindow.h"

#include <QDropEvent>
#include <QMimeData>

#include "linux/files/FileList.h"
#include "platform/Pointer.h"

namespace tarnwick {

namespace {

std::vector<FilePath> filesOf(const QMimeData& data) {
  const QByteArray list = data.data(fileListType);
  return filesOfUriList({list.data(), static_cast<size_t>(list.size())});
}

}  // namespace

NotchWindow::NotchWindow()
    : QWidget(nullptr, Qt::BypassWindowManagerHint | Qt::FramelessWindowHint | Qt::Tool |
                           Qt::WindowStaysOnTopHint | Qt::NoDropShadowWindowHint) {
  setAttribute(Qt::WA_TranslucentBackground);
  setAttribute(Qt::WA_ShowWithoutActivating);
  setAttribute(Qt::WA_AlwaysShowToolTips);  // it is never the active window
  setAcceptDrops(true);
}

bool NotchWindow::event(QEvent* event) {
  if ((event->type() == QEvent::Enter || event->type() == QEvent::Leave) && onCrossing) onCrossing();
  return QWidget::event(event);
}

void NotchWindow::dragEnterEvent(QDragEnterEvent* event) {
  // Links come in lists of the same type. What is dragged out of the tray has no business there.
  if (event->source() || filesOf(*event->mimeData()).empty()) return event->ignore();
  event->setDropAction(Qt::CopyAction);
  event->accept();
  if (onDragEnter) onDragEnter();
}

void NotchWindow::dragMoveEvent(QDragMoveEvent* event) {
  event->setDropAction(Qt::CopyAction);
  event->accept();
}

void NotchWindow::dragLeaveEvent(QDragLeaveEvent*) {
  if (onDragExit) onDragExit();
}

void NotchWindow::dropEvent(QDropEvent* event) {
  const std::vector<FilePath> files = filesOf(*event->mimeData());
  event->setDropAction(files.empty() ? Qt::IgnoreAction : Qt::CopyAction);
  event->setAccepted(!files.empty());
  if (onDropFiles) onDropFiles(files);
}

}  // namespace tarnwick
