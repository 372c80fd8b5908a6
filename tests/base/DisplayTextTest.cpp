#include "base/DisplayText.h"

#include <gtest/gtest.h>

namespace tarnwick {
namespace {

std::string repeated(const std::string& text, int times) {
  std::string all;
  for (int i = 0; i < times; ++i) all += text;
  return all;
}

TEST(DisplayText, LeavesWhatIsSeenAndNothingElse) {
  const struct {
    const char *foreign, *line;
  } cases[] = {
      {"npm  test ", "npm  test "},
      {"éàü · Ünïcode — 漢字 עברית नमस्ते", "éàü · Ünïcode — 漢字 עברית नमस्ते"},
      {"cd src \r\n\n   make\t-j2\n", "cd src make -j2"},
      {"\nfirst\u2028second\u0085third", "first second third"},
      {"\x1b[31mred\x07\x7f", "[31mred"},
      {"Bash\u202e\u2066txt.\u2069\u202c\u200e\u061c", "Bashtxt."},
      {"B\u200ba\u2060s\ufeffh\u00ad\u034f\u3164\u115f", "Bash"},
      {"\u0338Bash\u0338", "Bash\u0338"},  // a stroke through what stands before
      {"\ufe0fx\ufe0f\ufe0f", "x\ufe0f"},
      {"caf\xe9 \xed\xa0\x80", "caf\uFFFD \uFFFD\uFFFD\uFFFD"},
      // Emoji, whole.
      {"👩‍👩‍👧‍👦 🏳️‍🌈 ❤️‍🔥 👍🏽 🧑🏾‍💻 1️⃣ ✳︎ "
       "🇫🇷🇩🇪",
          "👩‍👩‍👧‍👦 🏳️‍🌈 ❤️‍🔥 👍🏽 🧑🏾‍💻 1️⃣ ✳︎ "
          "🇫🇷🇩🇪"},
      {"🏴\U000E0067\U000E0062\U000E0065\U000E006E\U000E0067\U000E007F!",
          "🏴\U000E0067\U000E0062\U000E0065\U000E006E\U000E0067\U000E007F!"},
      {"a\U000E0067\U000E0062", "a"},
      {"a\u200db 👩\u200db 👩\u200d", "ab 👩b 👩"},
      // Persian and Devanagari are written with joiners.
      {"می\u200cخواهم a\u200cb", "می\u200cخواهم ab"},
      {"क्\u200dष", "क्\u200dष"},
  };
  for (const auto& [foreign, line] : cases) EXPECT_EQ(displayText(foreign), line) << foreign;
}

TEST(DisplayText, HasBounds) {
  const std::string family = "👩‍👩‍👧‍👦", endless = repeated("👩\u200d", 10'000);
  EXPECT_EQ(displayText(repeated("é", 300), 7), repeated("é", 7));
  EXPECT_EQ(displayText(repeated(family, 4), 2), family + "👩") << "bounded in code points as well";
  EXPECT_EQ(displayText(repeated("e\u0301", 300), 5), repeated("e\u0301", 5)) << "cut between characters";
  EXPECT_EQ(displayText("e" + repeated("\u0301", 1000)), "e" + repeated("\u0301", 8));
  EXPECT_LE(displayText(endless).size(), 800 * 7u);
  EXPECT_EQ(displayText(repeated("\u200b", 1 << 16) + "far away"), "");
}

}  // namespace
}  // namespace tarnwick
