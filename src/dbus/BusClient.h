#pragma once
#include <chrono>
#include <cstdint>
#include <initializer_list>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/Descriptor.h"
#include "dbus/BusAddress.h"
#include "dbus/BusConnection.h"

namespace tarnwick {

/// A message from a bus, as far as we have a use for it.
struct BusEvent {
  enum class Kind { reply, error, signal, other };
  Kind kind = Kind::other;
  /// The serial number of the call that it answers; 0: none.
  uint32_t answered = 0;
  std::string member;
  /// The name of the error.
  std::string error;
  /// Its arguments up to the first that is no string.
  std::vector<std::string> arguments;
};

/// A connection to a message bus for a program that has nothing else to do than to wait for its answers. A
/// message that is malformed, of another byte order, or longer than 16 MiB ends it.
class BusClient {
 public:
  using Patience = std::optional<std::chrono::milliseconds>;

  /// Turns to the first address at which this user or root listens.
  explicit BusClient(const std::vector<BusAddress>& addresses);

  /// Takes over a connection that has greeted the bus and done nothing else yet.
  explicit BusClient(BusConnection connection) { socket_ = connection.release(unsent_); }

  /// The serial number of the call by which the bus takes a program in.
  static constexpr uint32_t greeting = 1;
  /// Calls a method of another program. @return the call's serial number
  uint32_t call(std::string_view destination, std::string_view path, std::string_view interface,
      std::string_view member, std::initializer_list<std::string_view> arguments = {});
  uint32_t call(std::string_view destination, std::string_view path, std::string_view interface,
      std::string_view member, const std::map<std::string, std::string>& argument);
  /// Sends a message that was made elsewhere.
  void send(std::string_view message) { unsent_ += message; }
  /// The next message; waits so long at most, or as long as it takes. @param output ends the wait when it has
  /// no reader any more. @return none when it has not come, and when the connection has ended
  std::optional<BusEvent> next(Patience patience, int output = -1);
  /// The answer to a call; what else comes meanwhile is dropped.
  /// @param output as of `next`
  std::optional<BusEvent> answer(uint32_t call, std::chrono::milliseconds patience, int output = -1);

 private:
  bool exchange();
  void end() { socket_ = Descriptor(); }
  std::optional<BusEvent> take();

  Descriptor socket_;
  uint32_t calls_ = greeting;
  std::string unsent_, received_;
  bool isAccepted_ = false;
};

}  // namespace tarnwick
