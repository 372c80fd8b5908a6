#include "base/L10n.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include "support/ForcedLanguage.h"

namespace tarnwick {
namespace {

TEST(L10n, FollowsTheUsersLanguages) {
  const struct {
    const char *all, *messages, *lang, *list;
    const char* language;
    bool french;
  } cases[] = {
      {"", "", "", "", "en", false},
      {"", "", "fr_FR.UTF-8", "", "fr_FR.UTF-8", true},
      {"", "de_DE", "fr_FR", "", "de_DE", false},
      {"fr_CA", "de_DE", "en_US", "", "fr_CA", true},
      {"", "", "en_US.UTF-8", "fr:en", "fr", true},
      {"", "", "fr_FR", "en:fr", "en", false},
      {"", "", "C.UTF-8", "fr", "en", false},
      {"C", "", "fr_FR", "fr", "en", false},
      {"", "", "frr_DE", "", "frr_DE", true},
  };
  for (const auto& c : cases) {
    setenv("LC_ALL", c.all, 1);
    setenv("LC_MESSAGES", c.messages, 1);
    setenv("LANG", c.lang, 1);
    setenv("LANGUAGE", c.list, 1);
    EXPECT_EQ(L10n::language(), c.language);
    EXPECT_EQ(L10n::isFrench(), c.french) << c.language;
    EXPECT_EQ(tr("yes", "oui"), c.french ? "oui" : "yes");
  }
}

TEST(L10n, TheDemonstrationMayForceALanguage) {
  setenv("LC_ALL", "fr_FR", 1);
  {
    const ForcedLanguage empty("");
    EXPECT_FALSE(L10n::isFrench());
    EXPECT_STREQ(L10n::locale(), "en_US");
  }
  EXPECT_STREQ(L10n::locale(), "fr_FR");
  const ForcedLanguage german("de");
  EXPECT_EQ(L10n::language(), "de");
  EXPECT_EQ(tr("yes", "oui"), "yes");
}

}  // namespace
}  // namespace tarnwick
