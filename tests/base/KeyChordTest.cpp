#include "base/KeyChord.h"

#include <gtest/gtest.h>

namespace tarnwick {
namespace {

TEST(KeyChord, IsReadAndWritten) {
  const struct {
    const char *given, *text;
    bool isReserved;
  } cases[] = {
      {"Super+n", "Super+n", true},
      {"Super+Shift+Alt+Ctrl+plus", "Ctrl+Alt+Shift+Super+plus", true},
      {"Shift+n", "Shift+n", false},
      {"n", "n", false},
      {"F", "F", false},
      {"F12", "F12", true},
      {"XF86Launch1", "XF86Launch1", true},
      {"", nullptr, false},
      {"Super+", nullptr, false},
      {"Hyper+n", nullptr, false},
      {"+", nullptr, false},
  };
  for (const auto& [given, text, isReserved] : cases) {
    const auto chord = KeyChord::parse(given);
    ASSERT_EQ(chord.has_value(), text != nullptr) << given;
    if (!chord) continue;
    EXPECT_EQ(chord->text(), text);
    EXPECT_EQ(chord->isReserved(), isReserved) << given;
    EXPECT_EQ(KeyChord::parse(chord->text()), chord);
  }
}

}  // namespace
}  // namespace tarnwick
