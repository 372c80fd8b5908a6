#pragma once
#include <gio/gio.h>

#include <string>
#include <vector>

#include "ChildProcess.h"
#include "platform/NotificationCenter.h"

namespace tarnwick {

/// A message bus of the test's own, listening on the socket `bus` in a folder of its own.
class PrivateBus {
 public:
  PrivateBus();
  const std::string& folder() const { return folder_.path(); }
  std::string address() const { return "unix:path=" + folder() + "/bus"; }
  void signal(int number) { daemon_.signal(number); }

 private:
  TemporaryFolder folder_;
  ChildProcess daemon_;
};

/// Hears the program's signals on a bus.
class BusListener {
 public:
  struct Signal {
    std::string member;
    StringMap map;
  };

  explicit BusListener(const PrivateBus& bus);
  ~BusListener();
  BusListener(const BusListener&) = delete;
  BusListener& operator=(const BusListener&) = delete;

  /// Waits until that many signals have come in all, for 20 seconds at most. @return all that have come
  const std::vector<Signal>& waitFor(size_t count);

 private:
  static void receive(GDBusConnection*, const char*, const char*, const char*, const char* member,
      GVariant* body, void* listener);

  GDBusConnection* connection_;
  std::vector<Signal> heard_;
};

}  // namespace tarnwick
