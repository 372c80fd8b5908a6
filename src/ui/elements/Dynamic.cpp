#include "ui/Dynamic.h"

#include "ui/elements/DynamicElement.h"

namespace tarnwick::ui {

View dynamic(DynamicBody body) { return View(std::make_shared<DynamicElement>(std::move(body))); }

View observing(std::vector<const ObservableObject*> objects, std::function<View()> body) {
  return dynamic({.body = [body = std::move(body)](const auto&, Date) { return body(); },
                  .observed = std::move(objects)});
}

View timeline(double interval, bool paused, std::function<View(Date)> body) {
  return dynamic({.body = [body = std::move(body)](const auto&, Date now) { return body(now); },
                  .interval = paused ? 0 : interval});
}

View everySecond(std::function<View(Date)> body) { return timeline(1, false, std::move(body)); }

}  // namespace tarnwick::ui
