#pragma once
#include <chrono>
#include <string>
#include <string_view>
#include <vector>

#include "base/Descriptor.h"
#include "dbus/BusAddress.h"
#include "dbus/BusReplies.h"

namespace tarnwick {

/// A connection to a message bus that never blocks: it tells whether the bus answers, and passes signals on.
/// A D-Bus library would wait for a bus that does not, and costs a hook more than all the rest of it.
class BusConnection {
 public:
  enum class State {
    /// There is none, or it does not want us.
    absent,
    /// It has not answered all that it was sent.
    silent,
    answers
  };

  /// Who may listen. anybody: for those who only ask whether there is a bus.
  enum class Peer { trusted, anybody };

  /// Turns to the first address at which somebody listens, and asks to be taken in.
  BusConnection(std::vector<BusAddress> addresses, Peer peer);

  State state() const { return state_; }
  /// Readable when the bus has said something. Negative when it is absent, and while it has more callers
  /// waiting than it can hold.
  int descriptor() const { return socket_; }
  /// Sends a message. Closing at once would lose it, for a bus drops what it has not read of a closed
  /// connection: only when the bus answers has it passed the message on.
  void send(std::string_view message);
  /// Takes in what the bus has said, and hands over what it had no room for.
  void proceed();
  /// Gives the connection to somebody who understands what the bus says: only before anything was sent, and
  /// none where there is none. @param unsent what is left to be sent of the greeting
  Descriptor release(std::string& unsent);
  /// Waits until the bus can be proceeded with, so long at most. What else becomes readable ends it as well.
  void pause(std::chrono::milliseconds longest, int other = -1) const;
  /// Proceeds while the bus is silent, so long at most.
  State wait(std::chrono::milliseconds patience);

 private:
  void connect();
  void write();
  void read();
  void giveUp();

  std::vector<BusAddress> addresses_;
  Peer peer_;
  Descriptor socket_;
  State state_ = State::silent;
  std::string unsent_;
  /// How many calls have been made.
  size_t calls_ = 0;
  BusReplies replies_;
};

}  // namespace tarnwick
