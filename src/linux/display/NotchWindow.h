#pragma once
#include <QWidget>
#include <functional>
#include <vector>

#include "base/FilePath.h"

namespace tarnwick {

/// The toolkit's side of the notch's window: transparent, unmanaged, never focused by itself, and the target
/// of file drags.
class NotchWindow : public QWidget {
 public:
  NotchWindow();

  std::function<void()> onDragEnter;
  std::function<void()> onDragExit;
  std::function<void(const std::vector<FilePath>&)> onDropFiles;
  /// The pointer came or left.
  std::function<void()> onCrossing;

 protected:
  bool event(QEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dragMoveEvent(QDragMoveEvent* event) override;
  void dragLeaveEvent(QDragLeaveEvent* event) override;
  void dropEvent(QDropEvent* event) override;
};

}  // namespace tarnwick
