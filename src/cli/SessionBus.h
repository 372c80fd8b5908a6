#pragma once
#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include "cli/BusAddress.h"
#include "cli/BusSocket.h"
#include "cli/NotificationPoster.h"

namespace tarnwick {

/// Posts notifications as signals on the session's message bus. Written here, and not left to a library,
/// because a hook waits for it: one connection, two writes, one answer.
class SessionBus : public NotificationPoster {
 public:
  /// @param addresses the first that can be connected to is used.
  /// @param patience how long a post may take when the bus does not answer.
  explicit SessionBus(std::vector<BusAddress> addresses,
                      std::chrono::milliseconds patience = std::chrono::milliseconds(350))
      : addresses_(std::move(addresses)), patience_(patience) {}

  /// Connects ahead of the first post: the bus lets the program in while that still reads what to post.
  void greet();
  void post(std::string_view name, const StringMap& userInfo) override;

 private:
  std::vector<BusAddress> addresses_;
  std::chrono::milliseconds patience_;
  /// Connected, and not used yet.
  std::unique_ptr<BusSocket> socket_;
};

}  // namespace tarnwick
