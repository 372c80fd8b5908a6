#include "views/BatteryRing.h"

#include "ui/Dynamic.h"
#include "views/BatteryLabel.h"

namespace tarnwick {

using namespace ui;

View batteryRing(int level) {
  return stateful(false, [level](State<bool> shown) {
    const double part = shown ? level / 100.0 : 0;
    return ZStack(UnitPoint::center,
        {
            Circle().stroke(white(0.2), {.width = 2.5}),
            Circle().stroke(batteryColor(level), {.width = 2.5, .trimTo = part}).rotation(-90),
            Text(std::to_string(level)).font({8, Weight::bold}),
        })
        .frame({.width = 20, .height = 20})
        .onAppear([shown] { withAnimation(easeOut(0.8).delayed(0.15), [&] { shown.set(true); }); });
  });
}

}  // namespace tarnwick
