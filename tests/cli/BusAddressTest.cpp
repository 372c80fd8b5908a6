#include "dbus/BusAddress.h"

#include <gmock/gmock.h>

#include "dbus/SessionBusAddress.h"

using namespace tarnwick;

TEST(BusAddress, ParsesListsOfAddresses) {
  struct Case {
    const char* list;
    std::vector<BusAddress> addresses;
  };
  const Case cases[] = {
      {"", {}},
      {"unix:path=/run/user/1000/bus", {{"/run/user/1000/bus"}}},
      {"unix:path=/tmp/dbus-1,guid=0123456789abcdef", {{"/tmp/dbus-1"}}},
      {"unix:guid=0123456789abcdef,path=/tmp/dbus-1", {{"/tmp/dbus-1"}}},
      {"unix:abstract=/tmp/dbus-1,guid=01", {{"/tmp/dbus-1", true}}},
      {"unix:runtime=yes", {{"/run/me/bus"}}},
      {"unix:path=/a%20b%2c%3Bc%25", {{"/a b,;c%"}}},
      {"unix:path=/a;unix:abstract=b;unix:path=/c", {{"/a"}, {"b", true}, {"/c"}}},
      {"tcp:host=localhost,port=1;autolaunch:;unix:path=/c", {{"/c"}}},
      // Malformed ones are passed over.
      {"unix:path=/a%2;unix:path=/a%zz;unix:path=/a%;unix:path=;unix:path;unix:;unix;:;;=;unix:path=/c",
          {{"/c"}}},
      {"unix:runtime=no", {}},
  };
  ::setenv("XDG_RUNTIME_DIR", "/run/me", 1);
  for (const Case& one : cases) EXPECT_EQ(parseBusAddresses(one.list), one.addresses) << one.list;
}

TEST(BusAddress, OfTheSessionIsInTheEnvironmentAndThenInTheRuntimeFolder) {
  const auto addresses = [](const char* list, const char* runtime) {
    ::setenv("DBUS_SESSION_BUS_ADDRESS", list, 1);
    ::setenv("XDG_RUNTIME_DIR", runtime, 1);
    return parseBusAddresses(sessionBusAddress());
  };
  using testing::ElementsAre, testing::IsEmpty;
  EXPECT_THAT(addresses("unix:abstract=a;unix:path=/c", "/run/user/1"),
      ElementsAre(BusAddress{"a", true}, BusAddress{"/c"}, BusAddress{"/run/user/1/bus"}));
  EXPECT_THAT(addresses("", "/it's ;,%"), ElementsAre(BusAddress{"/it's ;,%/bus"}));
  EXPECT_THAT(addresses("unix:path=/c", ""), ElementsAre(BusAddress{"/c"}));
  EXPECT_THAT(addresses("", ""), IsEmpty());
  EXPECT_THAT(addresses("disabled:", "/run/user/1"), IsEmpty());
}
