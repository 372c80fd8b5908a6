#include "cli/BusAddress.h"

#include <gmock/gmock.h>

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
  for (const Case& one : cases) EXPECT_EQ(parseBusAddresses(one.list, "/run/me"), one.addresses) << one.list;
  EXPECT_TRUE(parseBusAddresses("unix:runtime=yes", "").empty());
}
