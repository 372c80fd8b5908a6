#pragma once
#include "linux/wayland/SwayWindows.h"
#include "linux/wayland/WaylandClient.h"
#include "platform/WindowActivation.h"

namespace tarnwick {

/// Brings windows forward that the compositor tells of, where it does.
class WaylandWindowActivation : public WindowActivation {
 public:
  /// @param toplevels null where the compositor does not tell.
  explicit WaylandWindowActivation(Toplevels* toplevels);

  bool bringForward(const std::vector<std::string>& names) override;
  /// Nobody is told numbers of windows. Where processes are not told either, programs are known by their
  /// names, as long as one has a single window.
  std::optional<uint32_t> windowOf(uint32_t told, const std::vector<int32_t>& processes) override;
  void bringForward(uint32_t window) override;

 private:
  Toplevels* toplevels_;
  const SwayWindows sway_;
};

}  // namespace tarnwick
