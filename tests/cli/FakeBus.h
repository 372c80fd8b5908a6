#pragma once
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstring>
#include <functional>
#include <thread>

#include "support/TemporaryFolder.h"

namespace tarnwick {

/// A socket where a message bus should be: it takes one caller in and treats it as it likes.
class FakeBus {
 public:
  /// @param treat is given the connection, on a thread of its own; it must return when the caller hangs up.
  /// None: callers are never taken in.
  explicit FakeBus(std::function<void(int connection)> treat, int backlog = 8)
      : listener_(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_un name{};
    name.sun_family = AF_UNIX;
    std::strcpy(name.sun_path, path_.c_str());
    ::bind(listener_, reinterpret_cast<sockaddr*>(&name), sizeof name);
    ::listen(listener_, backlog);
    if (!treat) return;
    thread_ = std::thread([this, treat = std::move(treat)] {
      const int connection = ::accept(listener_, nullptr, nullptr);
      if (connection >= 0) treat(connection);
      ::close(connection);
    });
  }
  ~FakeBus() {
    ::shutdown(listener_, SHUT_RDWR);
    if (thread_.joinable()) thread_.join();
    ::close(listener_);
  }

  std::string address() const { return "unix:path=" + path_; }
  /// Connects to the bus itself. @return the connection
  int connect() const {
    sockaddr_un name{};
    name.sun_family = AF_UNIX;
    std::strcpy(name.sun_path, path_.c_str());
    const int caller = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (::connect(caller, reinterpret_cast<sockaddr*>(&name), sizeof name) == 0) return caller;
    ::close(caller);
    return -1;
  }

 private:
  TemporaryFolder folder_;
  std::string path_ = folder_.path() + "/bus";
  int listener_;
  std::thread thread_;
};

}  // namespace tarnwick
