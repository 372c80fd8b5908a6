#include "base/Transient.h"

namespace tarnwick {
namespace {

template<typename... Cases>
struct Overloaded : Cases... {
  using Cases::operator()...;
};
template<class... Cases>
Overloaded(Cases...) -> Overloaded<Cases...>;

}  // namespace

std::string Transient::key() const {
  return std::visit(
      Overloaded{
          [](const Hud& hud) -> std::string {
            return hud.kind == HUDKind::brightness ? "brightness" : "volume";
          },
          [](const Power&) -> std::string { return "power"; },
          [](const LowPowerMode&) -> std::string { return "lowpower"; },
          [](const Device& device) {
            return "device-" + device.name + (device.connected ? "-true" : "-false");
          },
      },
      value);
}

}  // namespace tarnwick
