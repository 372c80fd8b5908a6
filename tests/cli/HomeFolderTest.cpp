#include "cli/HomeFolder.h"

#include <gtest/gtest.h>

using namespace tarnwick;

TEST(HomeFolder, IsFoundInTheUserDatabase) {
  const std::string_view passwd =
      "root:x:0:0:root:/root:/bin/bash\n"
      "\n"
      "broken\n"
      "1000:x:4:1000::/wrong:/bin/sh\n"
      "ada:x:1000:1000:Ada,,,:/home/ada:/bin/zsh\n"
      "last:x:1001:1001::/home/last";
  EXPECT_EQ(homeFolderIn(passwd, 0), "/root");
  EXPECT_EQ(homeFolderIn(passwd, 1000), "/home/ada");
  EXPECT_EQ(homeFolderIn(passwd, 1001), "/home/last");
  EXPECT_EQ(homeFolderIn(passwd, 100), "");
  EXPECT_EQ(homeFolderIn("", 0), "");
}
