#pragma once
#include <chrono>
#include <functional>
#include <list>
#include <string>

#include "base/Descriptor.h"
#include "base/FilePath.h"
#include "platform/NotificationCenter.h"

namespace tarnwick {

/// Listens on a socket of this machine for events of sessions elsewhere, one a line as of `readRemoteLine`,
/// from this user's programs and root's. It holds 32 clients and 256 KiB of each one's line at most and
/// passes on 100 events a second, after a burst of 200: who sends more has to wait. It never blocks and never
/// answers.
class EventListener {
 public:
  explicit EventListener(std::function<void(const StringMap& event)> receive);
  /// Removes the socket, when it is still its own.
  ~EventListener();

  /// Starts to listen at that path, on a socket that only this user can use; a missing folder is made, for
  /// this user only. A socket at which nobody listens any more is replaced, anything else there is left
  /// alone.
  /// @return what is wrong, to be put behind "cannot listen at …: "; empty when it listens
  std::string listen(const FilePath& path);

  /// Readable while there is something to do.
  int descriptor() const { return wakers_; }
  /// Does some of it.
  void proceed();

 private:
  using Clock = std::chrono::steady_clock;

  struct Client {
    /// None once it has sent everything.
    Descriptor socket;
    /// What has come of it and was not passed on, and how much of it was looked through for a line's end.
    std::string text;
    size_t searched = 0;
    Clock::time_point heard;
  };

  void accept();
  bool read(Client& client);
  bool passOn(Client& client);
  void rest();

  std::function<void(const StringMap&)> receive_;
  FilePath path_;
  /// The socket's own number on its file system, and that one's.
  std::pair<uint64_t, uint64_t> identity_;
  Descriptor listener_;
  /// The listener and the clients; and what wakes us: those, while we may read of them, and the alarm.
  Descriptor sockets_, wakers_, alarm_;
  std::list<Client> clients_;
  bool isAccepting_ = false, isReading_ = false;
  /// How many events may be passed on now, as of that time.
  double budget_;
  Clock::time_point reckoned_ = Clock::now();
};

}  // namespace tarnwick
