#pragma once
#include "linux/bus/MessageBus.h"
#include "platform/GlobalShortcuts.h"

namespace tarnwick {

/// Shortcuts that the desktop's portal keeps, in its interface `org.freedesktop.portal.GlobalShortcuts`. The
/// desktop asks the user, who may choose other keys.
class PortalShortcuts : public GlobalShortcuts {
 public:
  explicit PortalShortcuts(MessageBus& sessionBus);

  void look() override;
  void set(const std::map<std::string, Wanted>& wanted) override;

 private:
  void follow();
  void createSession();
  void bind();
  void received(const QDBusMessage& signal);
  void answered(uint response, const QVariantMap& values);
  void tell(Result::State state);
  void closeSession();
  /// @return the options with the name under which the answer to the next request will come
  QVariantMap nextRequest();

  BusService portal_;
  bool isFollowing_ = false;
  std::map<std::string, Wanted> wanted_;
  /// The path of our session; empty: there is none.
  QString session_;
  /// The end of the path of the request that is under way; empty: none is.
  QString request_;
  int requests_ = 0;
};

}  // namespace tarnwick
