#include "cli/Text.h"

#include <gtest/gtest.h>

#include "base/Utf8.h"

using namespace tarnwick;

namespace {

std::string repeated(std::string_view text, size_t count) {
  std::string result;
  while (count-- > 0) result += text;
  return result;
}

}  // namespace

TEST(Text, CutsBetweenCharactersThatAUserSees) {
  const char* const characters[] = {
      "a",
      "é",
      "e\u0301",  // letter and combining accent
      "\r\n",     // one line break
      "日",
      "😀",
      "👍🏽",                // emoji and skin tone
      "👩\u200D👩\u200D👧\u200D👦",  // family, joined
      "🇫🇷",                      // pair of regional indicators
      "각",                      // conjoining letters
      "क्\u200D",
  };
  for (const std::string_view character : characters) {
    for (const size_t length : {0, 1, 2, 199, 200}) {
      const std::string expected = repeated(character, length);
      EXPECT_EQ(firstCharacters(repeated(character, 201), length, 100000), expected) << character << length;
      EXPECT_EQ(firstCharacters(expected, 200, 100000), expected) << character << length;
    }
  }
}

TEST(Text, BoundsTheBytesOfACutBetweenCodePoints) {
  const std::string marked = "a" + repeated("\u0301", 1000);
  EXPECT_EQ(firstCharacters(marked, 200, 100), "a" + repeated("\u0301", 49));
  EXPECT_EQ(firstCharacters("aaaa", 200, 3), "aaa");
  EXPECT_EQ(firstCharacters("ééé", 200, 3), "é");
}

TEST(Text, ReplacesWhatABusWouldRefuse) {
  struct Case {
    std::string_view text, clean;
    bool isValid;
  };
  using namespace std::string_view_literals;
  const Case cases[] = {
      {"", "", true},
      {"plain / \x7F", "plain / \x7F", true},
      {"aé日😀z", "aé日😀z", true},
      {"a\0b"sv, "a\uFFFDb", true},
      {"caf\xE9!", "caf\uFFFD!", false},
      {"\xC3", "\uFFFD", false},
      {"\xED\xA0\x80", "\uFFFD\uFFFD\uFFFD", false},
      {"\xC0\x80", "\uFFFD\uFFFD", false},
      {"\xF4\x90\x80\x80", "\uFFFD\uFFFD\uFFFD\uFFFD", false},
  };
  for (const Case& one : cases) {
    EXPECT_EQ(withoutInvalidUtf8(one.text), one.clean) << testing::PrintToString(one.text);
    EXPECT_EQ(isValidUtf8(one.text), one.isValid) << testing::PrintToString(one.text);
  }
}
