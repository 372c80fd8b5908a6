#include "base/Utf8.h"

#include <gtest/gtest.h>

using namespace tarnwick;
using namespace std::string_view_literals;

TEST(Utf8, IsMadeValid) {
  const struct {
    std::string_view text, clean;
    bool isValid;
  } cases[] = {
      {"", "", true},
      {"aé日😀\x7F", "aé日😀\x7F", true},
      {"a\0b"sv, "a\uFFFDb", true},
      {"caf\xE9!\xC3", "caf\uFFFD!\uFFFD", false},
      {"\xED\xA0\x80", "\uFFFD\uFFFD\uFFFD", false},
      {"\xC0\x80", "\uFFFD\uFFFD", false},
      {"\xF4\x90\x80\x80", "\uFFFD\uFFFD\uFFFD\uFFFD", false},
  };
  for (const auto& one : cases) {
    EXPECT_EQ(withoutInvalidUtf8(one.text), one.clean) << testing::PrintToString(one.text);
    EXPECT_EQ(isValidUtf8(one.text), one.isValid) << testing::PrintToString(one.text);
  }
}
