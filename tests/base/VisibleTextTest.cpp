#include "base/VisibleText.h"

#include <gtest/gtest.h>

namespace tarnwick {
namespace {

/// Substitutes stand in braces.
std::string shown(std::string_view line) {
  std::string all;
  for (const auto& [text, isSubstitute] : visibleParts(line)) all += isSubstitute ? "{" + text + "}" : text;
  return all;
}

TEST(VisibleText, ShowsWhatIsNotSeenByItself) {
  using namespace std::string_view_literals;
  const std::pair<std::string_view, const char*> cases[] = {
      {"npm test -- --é 日本 שלום 😀", "npm test -- --é 日本 שלום 😀"},
      {"a\x1b[2Kb\0\r\x7f"sv, "a{<U+001B>}[2Kb{<U+0000><U+000D><U+007F>}"},
      {"\tx", "{→   }x"},
      {"a\u202Eb\u2066c\u200D\u200B\uFEFF\u00AD",
          "a{<U+202E>}b{<U+2066>}c{<U+200D><U+200B><U+FEFF><U+00AD>}"},
      {"rm\u00A0-rf\u3000\u2028\u2800\u3164", "rm{<U+00A0>}-rf{<U+3000><U+2028><U+2800><U+3164>}"},
      {"✔\uFE0F \U000E0041\uE000\u0378", "✔{<U+FE0F>} {<U+E0041><U+E000><U+0378>}"},
      {"e\u0301\u0302\u0303\u0304 \u0301", "e\u0301\u0302{<U+0303><U+0304>} \u0301"},
      {"\u0301a", "{<U+0301>}a"},
      {"a\xff\xc3", "a\uFFFD\uFFFD"},
      {"", ""},
  };
  for (const auto& [line, expected] : cases) EXPECT_EQ(shown(line), expected);
}

}  // namespace
}  // namespace tarnwick
