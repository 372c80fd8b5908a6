#include <gmock/gmock.h>

#include "support/ForcedLanguage.h"
#include "ui/Stage.h"
#include "views/CrabView.h"
#include "views/NotchStage.h"
#include "views/SessionRow.h"

namespace tarnwick {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

void prompt(NotchStage& stage, const std::string& session) {
  // Sessions are told apart by when they were updated.
  stage.desktop.scheduler.advance(0.01);
  stage.hook(session, "UserPromptSubmit", {{"cwd", "/home/me/" + session}});
}

void stop(NotchStage& stage, const std::string& session) {
  stage.hook(session, "Stop", {{"cwd", "/home/me/" + session}});
  stage.model.dismissBanner();
}

void wait(NotchStage& stage, const std::string& session) {
  stage.hook(session, "Notification", {{"cwd", "/home/me/" + session}, {"message", "Look here"}});
  stage.model.dismissBanner();
}

void openSessions(NotchStage& stage) {
  withAnimation(notchOpen, [&] { stage.model.expand(Tab::claude); });
  stage.settle();
}

TEST(ClaudeStatusGlyph, CallsBeforeItCounts) {
  NotchStage stage;
  prompt(stage, "a");
  stage.settle();
  EXPECT_THAT(stage.inspect.symbols(), IsEmpty());
  EXPECT_THAT(stage.inspect.texts(), testing::SizeIs(1)) << "the sparkle alone";
  EXPECT_EQ(stage.inspect.kind("Text")[0].color(), crabOrange);

  prompt(stage, "b");
  prompt(stage, "c");
  stage.settle();
  EXPECT_THAT(stage.inspect.texts(), Contains("3"));

  wait(stage, "b");
  stage.settle();
  EXPECT_THAT(stage.inspect.symbols(), ElementsAre("hand.raised.fill"));
  EXPECT_THAT(stage.inspect.texts(), IsEmpty());
  EXPECT_EQ(stage.inspect.symbol("hand.raised.fill")->color(), colors::yellow);
}

TEST(ClaudeView, SaysThatThereAreNoSessions) {
  for (const auto& [code, text] :
      {std::pair{"en", "No Claude Code sessions"}, {"fr", "Aucune session Claude Code"}}) {
    const ForcedLanguage language(code);
    NotchStage stage;
    openSessions(stage);
    ASSERT_TRUE(stage.inspect.text(text));
    EXPECT_NEAR(stage.inspect.text(text)->frame().midX(), 470, 1);
  }
}

TEST(ClaudeView, ListsTheSessionsThatWantTheUserFirst) {
  NotchStage stage;
  stage.hook("rest", "SessionStart", {{"cwd", "/home/me/rest"}});
  prompt(stage, "ready");
  stop(stage, "ready");
  prompt(stage, "busy");
  wait(stage, "calling");
  openSessions(stage);
  // Rows are built where they can be seen; the last ones after scrolling.
  EXPECT_LT(stage.inspect.text("calling")->frame().y, stage.inspect.text("busy")->frame().y);
  EXPECT_EQ(
      stage.inspect.text("busy")->frame().y - stage.inspect.text("calling")->frame().y, sessionRowHeight + 2);
  stage.inspect.scroll(*stage.inspect.text("busy"), {0, -500});
  stage.settle();
  EXPECT_TRUE(stage.inspect.symbol("checkmark.circle.fill"));
  EXPECT_TRUE(stage.inspect.symbol("moon.zzz.fill"));
  EXPECT_LT(stage.inspect.text("ready")->frame().y, stage.inspect.text("rest")->frame().y);
}

TEST(ClaudeView, ClearsWhatIsFinished) {
  for (const auto& [code, name] : {std::pair{"en", "Clear finished"}, {"fr", "Effacer les terminées"}}) {
    const ForcedLanguage language(code);
    NotchStage stage;
    prompt(stage, "busy");
    openSessions(stage);
    EXPECT_FALSE(stage.inspect.control(name));

    prompt(stage, "ready");
    stop(stage, "ready");
    stage.settle();
    ASSERT_TRUE(stage.inspect.control(name));
    EXPECT_TRUE(stage.inspect.text("ready"));
    stage.inspect.tap(*stage.inspect.control(name));
    stage.settle();
    EXPECT_FALSE(stage.inspect.text("ready"));
    EXPECT_TRUE(stage.inspect.text("busy"));
    EXPECT_FALSE(stage.inspect.control(name));
  }
}

TEST(ClaudeView, IsGoneThroughAndWeededByKeys) {
  NotchStage stage;
  for (const char* id : {"a", "b"}) {
    prompt(stage, id);
    stop(stage, id);
  }
  prompt(stage, "busy");
  openSessions(stage);
  const auto focused = [&] {
    const ui::Node* node = stage.scene.input().focused();
    return node ? node->attributes.interaction->accessibilityName.substr(0, 2) : "";
  };
  EXPECT_FALSE(stage.scene.input().focus("nobody"));
  EXPECT_TRUE(stage.scene.input().focus("busy"));
  EXPECT_EQ(focused(), "bu");
  stage.inspect.key(ui::Key::erase);
  stage.settle();
  EXPECT_EQ(focused(), "bu") << "it works";
  using enum ui::Key;
  for (const auto& [key, next] : {std::pair{down, "b:"}, {erase, "a:"}, {erase, "bu"}}) {
    EXPECT_TRUE(stage.inspect.key(key));
    stage.settle();
    EXPECT_EQ(focused(), next);
  }
  EXPECT_EQ(stage.model.claude.sessions->size(), 1u);
}

TEST(ClaudeView, LetsRowsEnterOneAfterTheOther) {
  NotchStage stage;
  prompt(stage, "first");
  prompt(stage, "second");
  withAnimation(notchOpen, [&] { stage.model.expand(Tab::home); });
  stage.settle();
  stage.model.select(Tab::claude);
  stage.play(0.1);
  // The one updated last is on top.
  EXPECT_GT(stage.inspect.text("second")->opacity(), stage.inspect.text("first")->opacity());
  stage.settle();
  EXPECT_EQ(stage.inspect.text("first")->opacity(), 1);
}

TEST(SessionRow, LeadsToItsTerminalByClickAndKeyWhereThatIsPossible) {
  const ForcedLanguage english("en");
  NotchStage stage;
  stage.desktop.foreignProcesses.families[7] = {7, 6};
  stage.hook(
      "a", "UserPromptSubmit", {{"cwd", "/home/me/shop"}, {"process", "7"}, {"process_namespace", "1"}});
  const char* const arrow = "arrow.up.forward.square";
  const auto row = [&] { return *stage.inspect.control("shop: Thinking…"); };
  const auto& forward = stage.desktop.activation.broughtForward;

  openSessions(stage);
  stage.inspect.hover(row());
  stage.settle();
  EXPECT_FALSE(stage.inspect.symbol(arrow));
  stage.inspect.tap(row());
  EXPECT_TRUE(stage.model.isExpanded) << "its terminal has no window";

  stage.desktop.activation.windows[6] = {66};
  const auto isFocused = [&] {
    const auto focused = stage.inspect.focused();
    return focused && focused->interaction()->accessibilityName == "shop: Thinking…";
  };
  for (int step = 0; step < 12 && !isFocused(); ++step) stage.inspect.key(ui::Key::tab);
  stage.inspect.key(ui::Key::enter);
  EXPECT_THAT(forward, ElementsAre(66));
  EXPECT_FALSE(stage.model.isExpanded);

  stage.settle();
  openSessions(stage);
  stage.inspect.hover(row());
  stage.settle();
  EXPECT_TRUE(stage.inspect.symbol(arrow));
  stage.inspect.tap(row());
  EXPECT_THAT(forward, ElementsAre(66, 66));
}

TEST(BannerView, LeadsToTheTerminalWhereThatIsPossible) {
  NotchStage stage;
  const StringMap call{{"message", "Look here"}, {"process", "7"}, {"process_namespace", "1"}};
  stage.desktop.foreignProcesses.families[7] = {7};
  stage.desktop.activation.windows[7] = {66};
  stage.hook("a", "Notification", call);
  stage.settle();
  stage.inspect.tap(Point{470, 60});
  EXPECT_THAT(stage.desktop.activation.broughtForward, ElementsAre(66));
  EXPECT_EQ(stage.model.presentation(), Presentation::claude);

  stage.desktop.activation.windows.clear();
  stage.hook("a", "Notification", call);
  stage.settle();
  stage.inspect.tap(Point{470, 60});
  EXPECT_EQ(stage.model.tab, Tab::claude);
  EXPECT_TRUE(stage.model.isExpanded);
}

TEST(SessionRow, TellsHowLongItTookOrHowLongAgo) {
  const Date start{1000};
  struct {
    std::optional<double> finishedAfter;
    double now;
    const char *english, *french;
  } const cases[] = {
      {{}, 134.9, "2m14s", "2m14s"},
      {10.0, 69.9, "just now", "à l'instant"},
      {10.0, 70, "1 min ago", "il y a 1 min"},
      {10.0, 71, "1 min ago", "il y a 1 min"},
      {10.0, 7210, "120 min ago", "il y a 120 min"},
  };
  for (const auto& c : cases) {
    Session session{.startedAt = start};
    if (c.finishedAfter) session.finishedAt = start + *c.finishedAfter;
    for (const bool french : {false, true}) {
      const ForcedLanguage language(french ? "fr" : "en");
      EXPECT_EQ(elapsedText(session, start + c.now), french ? c.french : c.english);
    }
  }
}

TEST(SessionRow, TellsTheMachineOfASessionElsewhere) {
  MemoryDesktop desktop;
  TerminalVisits terminals(
      desktop.scheduler, desktop.foreignProcesses, desktop.processes, desktop.activation);
  for (const auto& [told, shown] : {std::pair{"devbox", "devbox"}, {"", "elsewhere"}}) {
    ui::Stage stage(sessionRow({.id = "a", .project = "shop", .elsewhere = told}, terminals));
    EXPECT_TRUE(stage.inspect.text(shown));
    EXPECT_TRUE(stage.inspect.control("shop (" + std::string(shown) + "): "));
  }
}

TEST(SessionRow, CountsUpEachSecond) {
  MemoryDesktop desktop;
  TerminalVisits terminals(
      desktop.scheduler, desktop.foreignProcesses, desktop.processes, desktop.activation);
  ui::Stage stage(sessionRow(
      {.id = "a", .project = "shop", .phase = Phase::working, .startedAt = VirtualScheduler().now()},
      terminals));
  EXPECT_TRUE(stage.inspect.text("0s"));
  stage.play(2.6);
  EXPECT_THAT(stage.inspect.texts(), testing::AnyOf(Contains("2s"), Contains("3s")));
}

}  // namespace
}  // namespace tarnwick
