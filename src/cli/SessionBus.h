#pragma once
#include <chrono>
#include <optional>
#include <string>

#include "cli/Courier.h"
#include "cli/NotificationPoster.h"
#include "cli/PermissionAsker.h"
#include "dbus/BusConnection.h"

namespace tarnwick {

/// Posts notifications as signals on the session's message bus, and leaves to a courier what it does not take
/// in time. Asks the overlay there for permissions.
class SessionBus : public NotificationPoster, public PermissionAsker {
 public:
  /// @param address a list as of `sessionBusAddress`.
  explicit SessionBus(std::string address) : address_(std::move(address)), courier_(address_) {}

  /// Connects ahead of the first post: the bus lets the program in while that still reads what to post.
  void greet();
  void post(std::string_view name, const StringMap& userInfo) override;
  std::optional<PermissionAnswer> ask(const StringMap& event, int reader) override;

 private:
  void connect();

  std::string address_;
  Courier courier_;
  /// Not used yet.
  std::optional<BusConnection> connection_;
};

}  // namespace tarnwick
