#include <gtest/gtest.h>

#include <QAccessible>
#include <QApplication>

#include "support/VirtualScheduler.h"
#include "ui/Button.h"
#include "ui/SceneWidget.h"

namespace tarnwick::ui {
namespace {

TEST(SceneWidget, tellsAssistiveTechnologyItsControls) {
  VirtualScheduler scheduler;
  int pressed = 0;
  const auto plain = [](View label, bool, bool) { return label; };
  SceneWidget widget(scheduler, {200, 100},
                     HStack({}, {Button(
                                     "Home", [&] { ++pressed; }, Text("H"), plain),
                                 Text("not a control"),
                                 Button(
                                     "Settings", [&] { pressed += 10; }, Text("S"), plain)}));
  widget.show();
  QAccessibleInterface* scene = QAccessible::queryAccessibleInterface(&widget);
  ASSERT_TRUE(scene);
  ASSERT_EQ(scene->childCount(), 2);
  QAccessibleInterface* settings = scene->child(1);
  EXPECT_EQ(settings->role(), QAccessible::Button);
  EXPECT_EQ(settings->text(QAccessible::Name), "Settings");
  EXPECT_EQ(scene->childAt(settings->rect().center().x(), settings->rect().center().y()), settings);
  EXPECT_EQ(scene->indexOfChild(settings), 1);
  settings->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
  EXPECT_EQ(pressed, 10);
}

}  // namespace
}  // namespace tarnwick::ui
