#include "dbus/BusConnection.h"

#include <gtest/gtest.h>

#include "cli/FakeBus.h"
#include "cli/PrivateBus.h"

namespace tarnwick {
namespace {

using State = BusConnection::State;
constexpr std::chrono::milliseconds shortly{100}, long_{30'000};

State ask(const std::string& address, std::chrono::milliseconds patience = long_) {
  return BusConnection(parseBusAddresses(address), BusConnection::Peer::trusted).wait(patience);
}

TEST(BusConnection, TellsABusThatAnswers) {
  const PrivateBus bus;
  EXPECT_EQ(ask(bus.address()), State::answers);
  EXPECT_EQ(ask("unix:path=/nonexistent;" + bus.address()), State::answers);
}

TEST(BusConnection, TellsABusThatDoesNot) {
  const auto silent = [](int connection) {
    char byte;
    while (::read(connection, &byte, 1) > 0) continue;
  };
  const auto hangsUp = [](int) {};
  const auto talksNonsense = [](int connection) {
    (void)!::write(connection, "HTTP/1.1 400\r\n", 14);
    char byte;
    while (::read(connection, &byte, 1) > 0) continue;
  };
  EXPECT_EQ(ask(""), State::absent);
  EXPECT_EQ(ask("unix:path=/nonexistent"), State::absent);
  EXPECT_EQ(ask(FakeBus(hangsUp).address()), State::absent);
  EXPECT_EQ(ask(FakeBus(talksNonsense).address()), State::absent);
  EXPECT_EQ(ask(FakeBus(silent).address(), shortly), State::silent);
  EXPECT_EQ(ask(FakeBus(nullptr).address(), shortly), State::silent) << "nobody takes the caller in";

  const FakeBus busy(nullptr, 0);
  std::vector<int> waiting;
  for (int caller = busy.connect(); caller >= 0; caller = busy.connect()) waiting.push_back(caller);
  EXPECT_EQ(ask(busy.address(), shortly), State::silent) << "it has no room for the caller";
  for (const int caller : waiting) ::close(caller);
}

}  // namespace
}  // namespace tarnwick
