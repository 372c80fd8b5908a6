#include <gtest/gtest.h>

#include <limits>

#include "claude/ClaudeService.h"
#include "support/ForcedLanguage.h"

namespace tarnwick {
namespace {

using Text = std::optional<std::string>;

TEST(ActivityTexts, DescribeToolCalls) {
  const struct {
    Text tool, detail;
    const char *english, *french;
  } cases[] = {
      {"Bash", "npm test", "Running · npm test", "Exécute · npm test"},
      {"Bash", "/usr/bin/env python3 -V", "Running · env python3 -V", "Exécute · env python3 -V"},
      {"Read", "/Users/x/project/README.md", "Reading · README.md", "Lit · README.md"},
      {"Read", "src/README.md", "Reading · src/README.md", "Lit · src/README.md"},
      {"Edit", "", "Editing", "Modifie"},
      {"MultiEdit", {}, "Editing", "Modifie"},
      {"Write", "/a/b/", "Writing · b", "Écrit · b"},
      {"Grep", "/", "Searching · /", "Cherche · /"},
      {"Glob", "*.h", "Searching · *.h", "Cherche · *.h"},
      {"WebFetch", "https://a.b/c", "Browsing the web · https://a.b/c", "Consulte le web · https://a.b/c"},
      {"WebSearch", {}, "Browsing the web", "Consulte le web"},
      {"Task", {}, "Delegating", "Délègue"},
      {"Agent", {}, "Delegating", "Délègue"},
      {"NotebookEdit", "a.ipynb", "NotebookEdit · a.ipynb", "NotebookEdit · a.ipynb"},
      {"bash", {}, "bash", "bash"},
      {"", "x", " · x", " · x"},
      {{}, "npm test", "Working…", "Travaille…"},
  };
  for (const auto& c : cases) {
    {
      const ForcedLanguage english("en");
      EXPECT_EQ(ClaudeService::describe(c.tool, c.detail), c.english);
    }
    const ForcedLanguage french("fr-CA");
    EXPECT_EQ(ClaudeService::describe(c.tool, c.detail), c.french);
  }
}

TEST(ActivityTexts, TranslateNotifications) {
  const struct {
    const char *message, *english, *french;
  } cases[] = {
      {"Claude needs your permission to use Bash", "Permission needed: Bash", "Permission demandée : Bash"},
      {"permission to use ", "Permission needed: ", "Permission demandée : "},
      {"", "Waiting for you", "Attend ta réponse"},
      {"Permission to use Bash", "Permission to use Bash", "Permission to use Bash"},
      {"Pick one", "Pick one", "Pick one"},
  };
  for (const auto& c : cases) {
    {
      const ForcedLanguage english("en");
      EXPECT_EQ(ClaudeService::translate(c.message), c.english);
    }
    const ForcedLanguage french("fr");
    EXPECT_EQ(ClaudeService::translate(c.message), c.french);
  }
}

TEST(ActivityTexts, FormatDurations) {
  const struct {
    double seconds;
    const char* text;
  } cases[] = {{0, "0s"}, {59.9, "59s"}, {60, "1m00s"}, {134.2, "2m14s"}, {3725, "62m05s"}, {-3, "0s"},
      {-0.5, "0s"}, {600, "10m00s"}, {std::numeric_limits<double>::quiet_NaN(), "0s"}};
  for (const auto& c : cases) EXPECT_EQ(ClaudeService::format(c.seconds), c.text) << c.seconds;
}

}  // namespace
}  // namespace tarnwick
