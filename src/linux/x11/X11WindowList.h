#pragma once
#include "linux/x11/X11Connection.h"
#include "linux/x11/X11Screens.h"
#include "platform/WindowList.h"

namespace tarnwick {

/// The windows that the window manager lists. Asked again only after something happened to a window: in
/// between the answer costs nothing.
class X11WindowList : public WindowList {
 public:
  X11WindowList(X11Connection& connection, const X11Screens& screens);

  std::optional<std::vector<WindowInfo>> onScreen() const override;
  int64_t ownProcess() const override;

 private:
  struct PixelWindow {
    std::optional<int64_t> owner;
    Rect pixels;
  };

  std::optional<std::vector<PixelWindow>> read() const;

  X11Connection& connection_;
  const X11Screens& screens_;
  mutable bool stale_ = true;
  mutable std::optional<std::vector<PixelWindow>> windows_;
  Subscription events_;
};

}  // namespace tarnwick
