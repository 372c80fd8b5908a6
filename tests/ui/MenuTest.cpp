#include <gtest/gtest.h>

#include "ui/Menu.h"
#include "ui/Stage.h"
#include "ui/engine/Host.h"

namespace tarnwick::ui {
namespace {

/// Notes what a scene asks its window for.
class NotedHost : public Host {
 public:
  void setCursor(Cursor) override {}
  void takeKeyboard() override { log += "take "; }
  void giveBackKeyboard() override { log += "give "; }
  void dragFiles(const std::vector<FilePath>& files, Node&) override { log += "drag " + files.at(0) + " "; }
  std::unique_ptr<HostedText> makeText() override { return nullptr; }
  std::string log;
};

class Menus : public testing::Test {
 protected:
  std::vector<MenuItem> items(const std::string& prefix) {
    const auto choice = [&](const std::string& name) {
      return MenuItem{.title = prefix + name, .action = [this, name] { chosen += name + " "; }};
    };
    MenuItem off = choice("off"), on = choice("two");
    off.enabled = false;
    on.checked = true;
    return {off, choice("one"), MenuItem::separator(), on, choice("three")};
  }
  bool shown = true, low = false;
  std::string chosen;
  Stage stage{[this] {
    View button =
        MenuButton({.name = "input", .label = Text("Input"), .items = [this] { return items("drop "); }});
    const View row =
        Rectangle()
            .fill(black())
            .frame({.width = 300, .height = 40})
            .onTap([this] { chosen += "tap "; })
            .contextMenu([this] { return items("pop "); });
    return VStack({}, {shown ? button : View(), row})
        .frame(
            {.maxWidth = infinity, .maxHeight = infinity, .align = low ? UnitPoint::bottom : UnitPoint::top})
        .onKey(Key::escape, [this] { chosen += "closed "; });
  }};
  void settle() { stage.play(0.3); }
  bool isOpen() { return stage.scene.floating().has_value(); }
  void openDropDown() {
    stage.inspect.tap(*stage.inspect.control("input"));
    settle();
    ASSERT_TRUE(isOpen());
  }
  std::string focused() {
    const auto found = stage.inspect.focused();
    return found ? found->interaction()->accessibilityName : "";
  }
};

TEST_F(Menus, openBesideTheirButtonAndStayOnTheScene) {
  for (const bool atBottom : {false, true}) {
    stage.change([&] { low = atBottom; });
    openDropDown();
    const Rect menu = *stage.scene.floating(), button = stage.inspect.control("input")->frame();
    EXPECT_GE(menu.y, 0);
    EXPECT_LE(menu.bottom(), 300);
    EXPECT_TRUE(atBottom ? menu.bottom() < button.y : menu.y > button.bottom());
    EXPECT_NEAR(menu.x, button.x, 1);
    stage.inspect.key(Key::escape);
    settle();
    EXPECT_FALSE(isOpen());
  }
  EXPECT_EQ(chosen, "") << "what is behind the menu gets no keys";
}

TEST_F(Menus, doWhatIsClickedOrReleasedOver) {
  openDropDown();
  stage.inspect.tap(*stage.inspect.control("drop off"));
  EXPECT_TRUE(isOpen());
  stage.inspect.tap(*stage.inspect.control("drop two"));
  settle();
  EXPECT_FALSE(isOpen());
  EXPECT_EQ(std::exchange(chosen, ""), "two ");

  openDropDown();
  stage.inspect.tap(Point{20, 290});
  settle();
  EXPECT_FALSE(isOpen());
  openDropDown();
  stage.inspect.tap(*stage.inspect.control("drop one"));
  EXPECT_EQ(std::exchange(chosen, ""), "one ");
  settle();

  stage.inspect.press(*stage.inspect.control("input"));
  settle();
  const Rect third = stage.inspect.control("drop three")->frame();
  const Point over{third.midX(), third.midY()};
  stage.inspect.hover(over);
  EXPECT_EQ(focused(), "drop three");
  stage.inspect.release(over);
  settle();
  EXPECT_EQ(chosen, "three ");
  EXPECT_FALSE(isOpen());
}

TEST_F(Menus, openAtThePointerForTheOtherButton) {
  const Point point{180, 30};
  stage.scene.input().pressed(point, PointerButton::secondary);
  settle();
  ASSERT_TRUE(isOpen());
  EXPECT_NEAR(stage.scene.floating()->x, point.x, 1);
  stage.scene.input().released(point, PointerButton::secondary);
  settle();
  EXPECT_TRUE(isOpen()) << "a click leaves it open";
  stage.inspect.tap(Point{60, 30});
  EXPECT_EQ(chosen, "") << "a press beside the menu only closes it";
  settle();
  EXPECT_FALSE(isOpen());
}

TEST_F(Menus, followTheKeyboardWhichTheyBorrow) {
  NotedHost host;
  stage.scene.setHost(&host);
  stage.inspect.key(Key::tab);
  stage.inspect.key(Key::down);
  settle();
  EXPECT_EQ(focused(), "drop one") << "the first that can be chosen";
  for (const auto& [key, expected] : std::vector<std::pair<Key, std::string>>{{Key::down, "drop two"},
           {Key::end, "drop three"}, {Key::down, "drop three"}, {Key::up, "drop two"}}) {
    stage.inspect.key(key);
    EXPECT_EQ(focused(), expected);
  }
  EXPECT_EQ(host.log, "take ");
  stage.inspect.key(Key::enter);
  settle();
  EXPECT_EQ(chosen, "two ");
  EXPECT_EQ(host.log, "take give ");
  EXPECT_EQ(focused(), "input");
  stage.inspect.key(Key::space);
  settle();
  EXPECT_TRUE(isOpen());
  stage.change([&] { shown = false; });
  settle();
  EXPECT_FALSE(isOpen()) << "its button has gone";
  EXPECT_EQ(host.log, "take give take give ");
}

}  // namespace
}  // namespace tarnwick::ui
