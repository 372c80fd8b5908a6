#pragma once
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <atomic>
#include <cstring>
#include <functional>
#include <thread>

#include "support/TemporaryFolder.h"

namespace tarnwick {

/// A socket where a message bus should be: it takes one caller in and treats it as it likes.
class FakeBus {
 public:
  /// @param treat is given the connection, on a thread of its own; it must return when the connection ends.
  /// None: callers are never taken in.
  /// @param user of that number listens.
  explicit FakeBus(std::function<void(int connection)> treat, int backlog = 8, uid_t user = ::geteuid())
      : listener_(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_un name{};
    name.sun_family = AF_UNIX;
    std::strcpy(name.sun_path, path_.c_str());
    ::bind(listener_, reinterpret_cast<sockaddr*>(&name), sizeof name);
    const uid_t us = ::geteuid();
    (void)!::seteuid(user);
    ::listen(listener_, backlog);
    (void)!::seteuid(us);
    if (!treat) return;
    thread_ = std::thread([this, treat = std::move(treat)] {
      connection_ = ::accept(listener_, nullptr, nullptr);
      if (connection_ >= 0) treat(connection_);
      ::shutdown(connection_, SHUT_RDWR);
    });
  }
  ~FakeBus() {
    ::shutdown(listener_, SHUT_RDWR);
    ::shutdown(connection_, SHUT_RDWR);
    if (thread_.joinable()) thread_.join();
    ::close(connection_);
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
  std::atomic<int> connection_ = -1;
  std::thread thread_;
};

}  // namespace tarnwick
