#include "cli/BusProbe.h"

#include <gtest/gtest.h>

#include "cli/FakeBus.h"
#include "cli/PrivateBus.h"

namespace tarnwick {
namespace {

using State = BusProbe::State;
constexpr std::chrono::milliseconds shortly{100}, long_{30'000};

BusProbe probe(const std::string& address) { return BusProbe(parseBusAddresses(address, "")); }

TEST(BusProbe, TellsABusThatAnswers) {
  const PrivateBus bus;
  EXPECT_EQ(probe(bus.address()).wait(long_), State::answers);
  EXPECT_EQ(probe("unix:path=/nonexistent;" + bus.address()).wait(long_), State::answers);
}

TEST(BusProbe, TellsABusThatDoesNot) {
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
  EXPECT_EQ(probe("").wait(long_), State::absent);
  EXPECT_EQ(probe("unix:path=/nonexistent").wait(long_), State::absent);
  EXPECT_EQ(probe(FakeBus(hangsUp).address()).wait(long_), State::absent);
  EXPECT_EQ(probe(FakeBus(talksNonsense).address()).wait(long_), State::absent);
  EXPECT_EQ(probe(FakeBus(silent).address()).wait(shortly), State::silent);
  EXPECT_EQ(probe(FakeBus(nullptr).address()).wait(shortly), State::silent) << "nobody takes the caller in";
}

}  // namespace
}  // namespace tarnwick
