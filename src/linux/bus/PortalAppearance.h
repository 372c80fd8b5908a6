#pragma once
#include <QVariant>

#include "linux/bus/MessageBus.h"
#include "platform/DesktopAppearance.h"

namespace tarnwick {

/// The appearance that the desktop's portal tells of, in its interface `org.freedesktop.portal.Settings`.
class PortalAppearance : public DesktopAppearance {
 public:
  explicit PortalAppearance(MessageBus& sessionBus);

  /// Begins to ask; nothing waits for the answer. A portal that may be started is.
  void connect() { portal_.follow(); }

 private:
  void fetch();
  void adopt(const QString& key, const QVariant& value);

  BusService portal_;
};

}  // namespace tarnwick
