#pragma once
#include <string>

#include "base/FilePath.h"
#include "cli/NotificationPoster.h"

namespace tarnwick {

/// Posts the events of hooks to a listener at a socket, which may lead to another machine. What that does not
/// take within 150 ms is lost: unlike a bus, a socket keeps what it has taken when the sender is gone, and
/// there is nothing to wait for.
class RemotePoster : public NotificationPoster {
 public:
  /// @param machine the name of this one, for its row
  RemotePoster(FilePath socket, std::string machine)
      : socket_(std::move(socket)), machine_(std::move(machine)) {}

  void post(std::string_view name, const StringMap& userInfo) override;

 private:
  FilePath socket_;
  std::string machine_;
};

/// What `TARNWICK_MACHINE` says, else the host name.
std::string machineName();

}  // namespace tarnwick
