#pragma once
#include <QObject>
#include <vector>

#include "base/Scheduler.h"
#include "platform/Screens.h"

class QScreen;

namespace tarnwick {

/// The outputs of a Wayland compositor, in the order in which it names them: none of them is the main one.
/// What panels keep free is not told.
class WaylandScreens : public Screens {
 public:
  explicit WaylandScreens(Scheduler& scheduler);

  std::vector<Screen> all() const override;
  Subscription observe(std::function<void()> onChange) override;

  /// The toolkit's screen with that frame; null when there is none.
  QScreen* toolkitScreen(const Rect& frame) const;
  /// The frame of the toolkit's screen of that name.
  std::optional<Rect> frameOf(const std::string& name) const;

 private:
  void refreshSoon();

  Scheduler& scheduler_;
  ObservableObject changes_;
  Task refreshing_;
  QObject context_;
};

}  // namespace tarnwick
