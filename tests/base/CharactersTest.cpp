#include "base/Characters.h"

#include <gtest/gtest.h>

using namespace tarnwick;

namespace {

std::string repeated(std::string_view text, size_t count) {
  std::string result;
  while (count-- > 0) result += text;
  return result;
}

TEST(Characters, CutsBetweenCharactersThatAUserSees) {
  // A letter, an accent beside it, a line break, a joined family, a flag, conjoining letters, a joined
  // syllable.
  for (const std::string_view character :
      {"日", "e\u0301", "\r\n", "👩\u200D👩\u200D👧\u200D👦", "🇫🇷", "각", "क्\u200D"}) {
    for (const size_t length : {0, 1, 2, 199, 200}) {
      const std::string expected = repeated(character, length);
      EXPECT_EQ(firstCharacters(repeated(character, 201), length, 100000), expected) << character << length;
      EXPECT_EQ(firstCharacters(expected, 200, 100000), expected) << character << length;
    }
  }
}

TEST(Characters, BoundsTheBytesOfACutBetweenCodePoints) {
  const std::string marked = "a" + repeated("\u0301", 1000);
  EXPECT_EQ(firstCharacters(marked, 200, 100), "a" + repeated("\u0301", 49));
  EXPECT_EQ(firstCharacters("aaaa", 200, 3), "aaa");
  EXPECT_EQ(firstCharacters("ééé", 200, 3), "é");
}

}  // namespace
