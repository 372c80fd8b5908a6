#include <gtest/gtest.h>

#include <QAccessible>
#include <QApplication>
#include <QWheelEvent>

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

TEST(SceneWidget, scrollsWithTheFingersOrByTheClicksOfAWheel) {
  VirtualScheduler scheduler;
  SceneWidget widget(
      scheduler, {200, 100},
      ScrollView(Axis::vertical, Text("x").frame({.width = 100, .height = 1000}).id("content"))
          .frame({.width = 200, .height = 100}));
  widget.show();
  const auto position = [&] {
    widget.scene().frame();
    return widget.scene().presentedFrame("content")->y;
  };
  // Smooth devices and some wheels tell a raw distance, whose unit is theirs.
  const auto click = [&] {
    QWheelEvent event({100, 50}, {100, 50}, {0, -120}, {0, -120}, Qt::NoButton, Qt::NoModifier,
                      Qt::NoScrollPhase, false);
    QApplication::sendEvent(&widget, &event);
  };
  ASSERT_EQ(position(), 0);
  click();
  EXPECT_EQ(position(), -48) << "a wheel";
  widget.smoothPointsPerClick = [](const QWheelEvent&) { return std::optional(15.0); };
  click();
  EXPECT_EQ(position(), -48 - 15) << "fingers";
}

}  // namespace
}  // namespace tarnwick::ui
