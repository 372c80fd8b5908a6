#include "linux/wayland/WaylandWindowActivation.h"

#include <strings.h>

#include <algorithm>

#include "base/Environment.h"
#include "base/ProcessStatus.h"

namespace tarnwick {
namespace {

/// The last part of "org.example.terminal" is what the program is called.
bool isCalled(const Toplevel& toplevel, const std::string& program) {
  const std::string name = toplevel.application.substr(toplevel.application.rfind('.') + 1);
  return !program.empty() && strcasecmp(name.c_str(), program.c_str()) == 0;
}

}  // namespace

WaylandWindowActivation::WaylandWindowActivation(Toplevels* toplevels)
    : toplevels_(toplevels), sway_(FilePath(environment("SWAYSOCK"))) {}

bool WaylandWindowActivation::bringForward(const std::vector<std::string>& names) {
  std::optional<uint32_t> found;
  for (const Toplevel& toplevel : toplevels_ ? toplevels_->all() : std::vector<Toplevel>()) {
    const auto isIts = [&](const std::string& name) {
      return !name.empty() && strcasecmp(name.c_str(), toplevel.application.c_str()) == 0;
    };
    if (std::ranges::any_of(names, isIts)) found = toplevel.id;
  }
  if (found) toplevels_->activate(*found);
  return found.has_value();
}

std::optional<uint32_t> WaylandWindowActivation::windowOf(uint32_t, const std::vector<int32_t>& processes) {
  if (sway_.areTold()) return sway_.windowOf(processes);
  const std::vector<Toplevel> toplevels = toplevels_ ? toplevels_->all() : std::vector<Toplevel>();
  const bool areProcessesTold =
      std::ranges::any_of(toplevels, [](const Toplevel& each) { return each.process.has_value(); });
  for (const int32_t process : processes) {
    const auto status = areProcessesTold ? std::nullopt : ProcessStatus::of(process);
    std::vector<uint32_t> found;
    for (const Toplevel& toplevel : toplevels) {
      const bool isIts =
          areProcessesTold ? toplevel.process == process : status && isCalled(toplevel, status->name);
      if (isIts) found.push_back(toplevel.id);
    }
    // Which one of several a name does not tell.
    if (!found.empty())
      return areProcessesTold || found.size() == 1 ? std::optional(found.back()) : std::nullopt;
  }
  return std::nullopt;
}

void WaylandWindowActivation::bringForward(uint32_t window) {
  if (sway_.areTold()) {
    sway_.bringForward(window);
  } else if (toplevels_) {
    toplevels_->activate(window);
  }
}

}  // namespace tarnwick
