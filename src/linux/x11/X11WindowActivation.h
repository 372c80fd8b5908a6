#pragma once
#include "linux/x11/X11Connection.h"
#include "platform/WindowActivation.h"

namespace tarnwick {

/// Asks the window manager for it, as pagers and taskbars do (EWMH, `_NET_ACTIVE_WINDOW`).
class X11WindowActivation : public WindowActivation {
 public:
  explicit X11WindowActivation(X11Connection& connection) : connection_(connection) {}
  bool bringForward(const std::vector<std::string>& names) override;
  std::optional<uint32_t> windowOf(uint32_t told, const std::vector<int32_t>& processes) override;
  void bringForward(uint32_t window) override;

 private:
  X11Connection& connection_;
};

}  // namespace tarnwick
