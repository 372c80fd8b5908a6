#include "linux/wayland/WaylandWindowActivation.h"

#include <strings.h>

#include <algorithm>

namespace tarnwick {

bool WaylandWindowActivation::bringForward(const std::vector<std::string>& names) {
  std::optional<uint32_t> found;
  for (const Toplevel& toplevel : toplevels_ ? toplevels_->all() : std::vector<Toplevel>()) {
    const auto isIts = [&](const std::string& name) {
      return !name.empty() && strcasecmp(name.c_str(), toplevel.application.c_str()) == 0;
    };
    if (std::ranges::any_of(names, isIts)) found = toplevel.id;
  }
  if (found) bringForward(*found);
  return found.has_value();
}

std::optional<uint32_t> WaylandWindowActivation::windowOf(uint32_t, const std::vector<int32_t>& processes) {
  const std::vector<Toplevel> toplevels = toplevels_ ? toplevels_->all() : std::vector<Toplevel>();
  for (const int32_t process : processes) {
    std::optional<uint32_t> found;
    for (const Toplevel& toplevel : toplevels) {
      if (toplevel.process == process) found = toplevel.id;
    }
    if (found) return found;
  }
  return std::nullopt;
}

void WaylandWindowActivation::bringForward(uint32_t window) {
  if (toplevels_) toplevels_->activate(window);
}

}  // namespace tarnwick
