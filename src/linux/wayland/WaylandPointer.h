#pragma once
#include <QObject>

#include "base/ObservableObject.h"
#include "platform/Pointer.h"

class QWindow;

namespace tarnwick {

/// The pointer over one window: where it is otherwise the compositor tells nobody. A drag shows no button
/// here, and what it offers is known only to the window, when it comes over it.
class WaylandPointer : public QObject, public Pointer {
 public:
  explicit WaylandPointer(QWindow& window);

  /// Also beside the window while a button is held that went down in it.
  std::optional<Point> position() const override { return position_; }
  bool isKnownEverywhere() const override { return false; }
  bool buttonDown() const override { return buttonDown_; }
  /// Of this window's drags only.
  int dragChangeCount() const override { return dragChangeCount_; }
  std::optional<std::vector<std::string>> dragTypes() const override { return std::nullopt; }
  Subscription observe(std::function<void()> onActivity) override;
  void setWantsActivity(bool wants) override { wantsActivity_ = wants; }

  /// The window is no longer there to tell of it.
  void left();

 protected:
  bool eventFilter(QObject* window, QEvent* event) override;

 private:
  void isAt(Point position);
  void changed();

  std::optional<Point> position_;
  bool buttonDown_ = false;
  int dragChangeCount_ = 0;
  bool wantsActivity_ = false;
  ObservableObject activity_;
};

}  // namespace tarnwick
