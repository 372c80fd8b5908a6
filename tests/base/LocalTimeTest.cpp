#include "base/LocalTime.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include "support/ForcedLanguage.h"

namespace tarnwick {
namespace {

class LocalTimeTest : public testing::Test {
 protected:
  LocalTimeTest() { ::setenv("TZ", "Europe/Paris", 1); }
  ~LocalTimeTest() override { ::unsetenv("TZ"); }
};

TEST_F(LocalTimeTest, WritesTheTimeOfDay) {
  const struct {
    double seconds;  // since 1970-01-01 01:00 in Paris
    const char *english, *french;
  } cases[] = {{14 * 3600, "3:00 PM", "15:00"}, {-3600, "12:00 AM", "00:00"},
      {11 * 3600, "12:00 PM", "12:00"}, {8 * 3600 + 5 * 60 + 59.9, "9:05 AM", "09:05"},
      {22 * 3600 + 59 * 60, "11:59 PM", "23:59"}};
  for (const auto& [seconds, english, french] : cases) {
    EXPECT_EQ((ForcedLanguage("en"), shortTime({seconds})), english);
    EXPECT_EQ((ForcedLanguage("fr"), shortTime({seconds})), french);
  }
}

TEST_F(LocalTimeTest, KnowsDaysOfAnyLength) {
  constexpr double winterDay = 1'774'656'000 - 3600;  // 2026-03-28 00:00; the clocks go forward on the 29th
  EXPECT_EQ(startOfDay({winterDay + 86399}).secondsSince1970, winterDay);
  EXPECT_EQ(startOfDay({winterDay}, 1).secondsSince1970, winterDay + 86400);
  EXPECT_EQ(startOfDay({winterDay}, 2).secondsSince1970, winterDay + 2 * 86400 - 3600);
}

}  // namespace
}  // namespace tarnwick
