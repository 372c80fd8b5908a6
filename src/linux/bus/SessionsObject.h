#pragma once
#include <QObject>
#include <QString>
#include <functional>
#include <optional>
#include <string>

#include "base/OncePerFrame.h"
#include "linux/bus/MessageBus.h"

namespace tarnwick {

/// What other programs of the session may ask the overlay on its bus: the object /dev/tarnwick with the
/// method `Sessions` of the interface `dev.tarnwick`. Once it was asked, the next change is told by the
/// signal `SessionsChanged`, which has no arguments; then no other, until it is asked again. So nothing is
/// sent where nobody listens, and who listens but does not take what is sent is sent no more.
class SessionsObject : public QObject {
  Q_OBJECT
  Q_CLASSINFO("D-Bus Interface", "dev.tarnwick")

 public:
  /// To be made before the bus is opened. Both arguments must outlive it.
  SessionsObject(Scheduler& scheduler, MessageBus& bus);

  /// Makes the answer; asked once after each change at most.
  std::function<std::string()> describe;
  /// The answer may be another one now.
  void changed();

 public Q_SLOTS:
  Q_SCRIPTABLE QString Sessions();

 private:
  void tell();

  MessageBus& bus_;
  std::optional<QString> answer_;
  bool wasAsked_ = false;
  OncePerFrame telling_;
};

}  // namespace tarnwick
