#include "views/PermissionView.h"

#include <gmock/gmock.h>

#include "support/ForcedLanguage.h"
#include "ui/Stage.h"
#include "views/NotchStage.h"

namespace tarnwick {
namespace {

using Behavior = PermissionAnswer::Behavior;

class PermissionViewTest : public testing::Test {
 protected:
  /// @param more what the command ends with besides
  uint64_t ask(const std::string& session, const std::string& command, const std::string& more = "") {
    stage.desktop.scheduler.advance(0.01);
    withAnimation(notchOpen, [&] {
      stage.model.permissions.ask({++number,
          {{"session_id", session}, {"hook_event_name", "PermissionRequest"}, {"cwd", "/home/me/" + session},
              {"tool_name", "Bash"}, {"tool_detail", command},
              {toolInputKey, R"({"command":")" + command + more + "\"}"}}});
    });
    return number;
  }
  void open() {
    withAnimation(notchOpen, [this] { stage.model.expand(); });
    stage.settle();
  }
  auto button(const std::string& name) const { return stage.inspect.control(name); }
  const auto& answers() const { return stage.desktop.permissions.answers; }
  std::string& disclosed() { return disclosed_ = stage.model.permissions.disclosed.get(); }

  const ForcedLanguage english{"en"};
  NotchStage stage;
  uint64_t number = 0;

 private:
  std::string disclosed_;
};

TEST_F(PermissionViewTest, ShowsWhatWouldBeDoneAndTakesTheAnswer) {
  const uint64_t first = ask("shop", "make test", "\\u202e"), second = ask("shop", "rm x");
  open();
  const auto lines = stage.inspect.kind("TextLines");
  ASSERT_EQ(lines.size(), 1u);
  EXPECT_EQ(lines[0].content(), "make test<U+202E>\n");
  ASSERT_TRUE(button("Allow Bash: make test"));
  stage.inspect.tap(*button("Allow Bash: make test"));
  EXPECT_EQ(answers().at(first).behavior, Behavior::allow);
  EXPECT_FALSE(answers().contains(second));
  stage.play(0.1);
  EXPECT_EQ(stage.inspect.kind("TextLines")[0].content(), "rm x\n");
  // The second click of a double click, where the next request has come up meanwhile.
  stage.inspect.tap(*button("Allow Bash: rm x"));
  EXPECT_FALSE(answers().contains(second));
  stage.settle();
  stage.inspect.tap(*button("Deny Bash: rm x"));
  EXPECT_EQ(answers().at(second).behavior, Behavior::deny);
  stage.settle();
  EXPECT_FALSE(button("Show the request") || button("Hide the request"));
  EXPECT_TRUE(stage.inspect.kind("TextLines").empty());
}

TEST_F(PermissionViewTest, TakesNoClickThatBeganBeforeTheButtonsHadSettled) {
  const uint64_t request = ask("shop", "make");
  withAnimation(notchOpen, [this] { stage.model.expand(); });
  stage.play(0.4);
  const auto allow = button("Allow Bash: make");
  ASSERT_TRUE(allow);
  stage.inspect.press(*allow);
  stage.settle();
  const Rect place = allow->frame();
  stage.inspect.release({place.x + place.width / 2, place.y + place.height / 2});
  EXPECT_FALSE(answers().contains(request));

  // Another session that comes first moves the row.
  ask("bakery", "rm x");
  stage.play(0.4);
  stage.inspect.tap(*button("Allow Bash: make"));
  EXPECT_FALSE(answers().contains(request));
  stage.settle();
  stage.inspect.tap(*button("Allow Bash: make"));
  EXPECT_TRUE(answers().contains(request));
}

TEST_F(PermissionViewTest, IsShownByItsBannerTheKeyboardAndTheChevron) {
  ask("shop", "make");
  ask("bakery", "bake");
  stage.desktop.scheduler.advance(0.01);
  stage.hook("shop", "Notification", {{"cwd", "/home/me/shop"}, {"notification_type", "permission_prompt"}});
  stage.settle();
  stage.inspect.tap(*stage.inspect.text("shop"));
  stage.settle();
  EXPECT_EQ(disclosed(), "shop");
  EXPECT_TRUE(stage.desktop.activation.broughtForward.empty());
  EXPECT_TRUE(button("Allow Bash: make"));
  stage.model.collapse();
  stage.settle();

  open();
  EXPECT_EQ(disclosed(), "") << "two sessions ask";
  // The rows' chevrons, from the top.
  stage.inspect.tap(*button("Show the request"));
  stage.settle();
  ASSERT_EQ(disclosed(), "shop");
  ASSERT_TRUE(button("Allow Bash: make"));
  stage.inspect.tap(*button("Hide the request"));
  stage.settle();
  EXPECT_FALSE(button("Allow Bash: make"));
  for (const ui::Key key : {ui::Key::tab, ui::Key::tab}) stage.inspect.key(key);
  while (stage.inspect.focused()->interaction()->accessibilityName != "shop: Permission needed: Bash")
    ASSERT_TRUE(stage.inspect.key(ui::Key::tab));
  stage.inspect.key(ui::Key::down);
  stage.inspect.key(ui::Key::right);
  stage.settle();
  EXPECT_EQ(disclosed(), "bakery") << "from row to row";
  while (stage.inspect.focused()->interaction()->accessibilityName != "Allow Bash: bake")
    ASSERT_TRUE(stage.inspect.key(ui::Key::tab));
  stage.inspect.key(ui::Key::enter);
  EXPECT_EQ(answers().at(2).behavior, Behavior::allow);
  EXPECT_FALSE(answers().contains(1));
}

TEST_F(PermissionViewTest, GoesWithItsRequest) {
  const uint64_t request = ask("shop", "make");
  open();
  stage.desktop.permissions.end(request);
  stage.settle();
  EXPECT_FALSE(button("Allow Bash: make"));
  EXPECT_TRUE(stage.inspect.text("Permission needed: Bash")) << "it waits in its terminal";
}

}  // namespace
}  // namespace tarnwick
