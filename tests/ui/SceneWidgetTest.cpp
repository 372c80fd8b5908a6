#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <private/qguiapplication_p.h>
#include <qpa/qplatformaccessibility.h>
#include <qpa/qplatformintegration.h>
#include <QAccessible>
#include <QApplication>
#include <QPlainTextEdit>
#include <QWheelEvent>

#include "showcase/memory/VirtualScheduler.h"
#include "ui/Button.h"
#include "ui/Dynamic.h"
#include "ui/TextEditor.h"
#include "ui/engine/Inspector.h"
#include "ui/host/SceneWidget.h"
#include "ui/paint/Painter.h"

namespace tarnwick::ui {
namespace {

/// Hears what assistive technology is told.
class Listener {
 public:
  Listener() {
    heard.clear();
    QGuiApplicationPrivate::platformIntegration()->accessibility()->setActive(true);
    before_ = QAccessible::installUpdateHandler(hear);
  }
  ~Listener() {
    QAccessible::installUpdateHandler(before_);
    QGuiApplicationPrivate::platformIntegration()->accessibility()->setActive(false);
  }
  static inline std::vector<std::string> heard;

 private:
  static void hear(QAccessibleEvent* event) {
    QAccessibleInterface* about = event->accessibleInterface();
    if (!about || about->object()) return;  // the window's own
    const std::string name = about->text(QAccessible::Name).toStdString();
    EXPECT_NE(about->parent()->indexOfChild(about), -1) << name << ": those who hear of it ask for its place";
    switch (event->type()) {
      case QAccessible::ObjectCreated:
        return heard.push_back("created " + name);
      case QAccessible::ObjectDestroyed:
        return heard.push_back("destroyed " + name);
      case QAccessible::NameChanged:
        return heard.push_back("named " + name);
      case QAccessible::StateChanged:
        if (static_cast<QAccessibleStateChangeEvent*>(event)->changedStates().checked)
          heard.push_back(name + (about->state().checked ? " on" : " off"));
        return;
      case QAccessible::ObjectShow:
        return;
      case QAccessible::Focus:
        return heard.push_back("focus on " + name);
      case QAccessible::ValueChanged:
        return heard.push_back(name + " " + about->valueInterface()->currentValue().toString().toStdString());
      default:
        ADD_FAILURE() << "event " << event->type() << " about " << name;
    }
  }
  QAccessible::UpdateHandler before_;
};

TEST(SceneWidget, tellsAssistiveTechnologyItsControls) {
  VirtualScheduler scheduler;
  int pressed = 0;
  SceneWidget widget(scheduler, {200, 100},
      HStack({}, {Button({"Home", Text("H"), {}, [&] { ++pressed; }}), Text("not a control"),
                     Button({"Settings", Text("S"), {}, [&] { pressed += 10; }})}));
  widget.show();
  const Listener listener;
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

TEST(SceneWidget, tellsAssistiveTechnologyWhatChanges) {
  VirtualScheduler scheduler;
  struct State : ObservableObject {
    std::vector<std::string> names{"a", "b"};
    std::string last = "last";
    bool on = false;
    double level = 0.5;
    int moved = 0;
  } state;
  SceneWidget widget(scheduler, {200, 100}, observing([&] {
    state.noteRead();
    Views controls;
    for (const std::string& name : state.names) {
      controls.push_back(Text(name).accessibility(Role::text, name).id(name));
    }
    controls.push_back(
        Text("x")
            .padding(double(state.moved))
            .accessibility(Role::button, state.last)
            .accessibilityChecked(state.on)
            .accessibilityValue({.now = state.level, .set = [&](double v) { state.level = v; }})
            .id("last"));
    return VStack({}, controls);
  }));
  widget.show();
  const auto change = [&](const std::function<void()>& alter) {
    alter();
    state.notifyObservers();
    widget.scene().commit(std::nullopt);
    Listener::heard.clear();
    widget.hide();
    widget.show();  // makes a frame
    return Listener::heard;
  };
  using testing::ElementsAre;
  using testing::IsEmpty;
  EXPECT_THAT(change([&] { state.names = {"a"}; }), IsEmpty()) << "nobody listens";

  const Listener listener;
  QAccessibleInterface* scene = QAccessible::queryAccessibleInterface(&widget);
  ASSERT_EQ(scene->childCount(), 2);
  QAccessibleInterface* last = scene->child(1);
  EXPECT_THAT(change([&] { state.moved = 3; }), IsEmpty()) << "it has only moved";
  EXPECT_THAT(change([&] { state.names = {"new", "a"}; }), ElementsAre("created new"));
  EXPECT_EQ(scene->child(2), last) << "the same control in another place";
  EXPECT_THAT(change([&] { state.last = "end"; }), ElementsAre("named end"));
  EXPECT_THAT(change([&] { state.on = true; }), ElementsAre("end on"));
  EXPECT_THAT(change([&] { last->valueInterface()->setCurrentValue(7); }), ElementsAre("end 1"));
  EXPECT_THAT(
      change([&] { last->actionInterface()->doAction(QAccessibleActionInterface::setFocusAction()); }),
      ElementsAre("focus on end"));
  EXPECT_TRUE(last->state().focused);
  EXPECT_THAT(change([&] { state.names = {"b"}; }), ElementsAre("destroyed new", "destroyed a", "created b"));
  EXPECT_EQ(scene->childCount(), 2);
  EXPECT_EQ(scene->child(0)->text(QAccessible::Name), "b");
  EXPECT_EQ(scene->child(1), last);
}

TEST(SceneWidget, showsAChangeAtOnceButABurstOnlyOnceARefresh) {
  VirtualScheduler scheduler;
  ObservableObject state;
  double width = 0;
  SceneWidget widget(scheduler, {400, 100}, observing([&] {
    state.noteRead();
    return Rectangle().fill(black()).frame({.width = width, .height = 20});
  }));
  widget.show();
  scheduler.advance(1);
  int frames = 0;
  widget.onFrame = [&] { ++frames; };
  const auto change = [&] {
    width += 1;
    state.notifyObservers();
  };
  change();
  scheduler.advance(0);
  EXPECT_EQ(frames, 1);
  scheduler.advance(0.005);
  change();
  scheduler.advance(0);
  EXPECT_EQ(frames, 2) << "even soon after another frame";
  for (int i = 0; i < 200; ++i) {
    change();
    scheduler.advance(0.005);
  }
  EXPECT_LE(frames, 63);
  EXPECT_GE(frames, 55);
}

TEST(SceneWidget, scrollsWithTheFingersOrByTheClicksOfAWheel) {
  VirtualScheduler scheduler;
  SceneWidget widget(scheduler, {200, 100},
      ScrollView(Axis::vertical, Text("x").frame({.width = 100, .height = 1000}).id("content"))
          .frame({.width = 200, .height = 100}));
  widget.show();
  const auto position = [&] {
    widget.scene().frame();
    return widget.scene().presentedFrame("content")->y;
  };
  // Smooth devices and some wheels tell a raw distance, whose unit is theirs.
  const auto click = [&] {
    QWheelEvent event(
        {100, 50}, {100, 50}, {0, -120}, {0, -120}, Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(&widget, &event);
  };
  ASSERT_EQ(position(), 0);
  click();
  EXPECT_EQ(position(), -48) << "a wheel";
  widget.smoothPointsPerClick = [](const QWheelEvent&) { return std::optional(15.0); };
  click();
  EXPECT_EQ(position(), -48 - 15) << "fingers";
}

TEST(SceneWidget, hostsTheToolkitsEditorInPlaceAtRestAndAsAPictureOnItsWay) {
  VirtualScheduler scheduler;
  struct : ObservableObject {
    Observed<SharedText> text{*this, "written"};
    Observed<double> opacity{*this, 1};
    Observed<bool> shown{*this, true};
  } state;
  const State<bool> focus(false);
  std::string keyboard;
  SceneWidget widget(scheduler, {200, 100}, observing([&, memory = makeTextMemory()] {
    const View editor = TextEditor(
        {.name = "Notes",
            .text = state.text,
            .changed = [&](const auto& text) { state.text = text; },
            .focus = focus,
            .memory = memory})
                            .id("editor");
    return VStack({}, {state.shown ? editor.frame({.width = 120, .height = 60}) : View(),
                          Button({.name = "next", .label = Text("Next"), .action = [] {}})})
        .opacity(state.opacity);
  }));
  widget.onTakeKeyboard = [&] {
    keyboard += "take ";
    QApplication::setActiveWindow(&widget);
  };
  widget.onGiveBackKeyboard = [&] { keyboard += "give "; };
  widget.show();
  const auto frame = [&] {
    scheduler.advance(0.1);
    QImage picture(200, 100, QImage::Format_ARGB32_Premultiplied);
    paint(widget.scene(), picture, {0, 0, 200, 100});
    int ink = 0;
    for (int x = 40; x < 160; ++x) ink += qAlpha(picture.pixel(x, 20)) > 0;
    return ink;
  };
  auto* edit = widget.findChild<QPlainTextEdit*>();
  ASSERT_TRUE(edit);
  EXPECT_TRUE(edit->isVisible());
  EXPECT_EQ(edit->geometry().size(), QSize(120, 60));
  EXPECT_EQ(edit->toPlainText(), "written");
  EXPECT_EQ(frame(), 0) << "the editor shows it";
  state.opacity = 0.5;
  EXPECT_GT(frame(), 0);
  EXPECT_FALSE(edit->isVisible());
  state.opacity = 1;
  EXPECT_EQ(frame(), 0);
  EXPECT_TRUE(edit->isVisible());

  const auto press = [&](int key, const QString& text = {}) {
    QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier, text);
    QApplication::sendEvent(QApplication::focusWidget(), &event);
    frame();
  };
  widget.scene().input().key({.key = Key::tab});
  EXPECT_EQ(QApplication::focusWidget(), edit);
  EXPECT_EQ(std::exchange(keyboard, ""), "take ");
  EXPECT_TRUE(focus.get());
  press(Qt::Key_A, "a");
  EXPECT_EQ(state.text->get(), "awritten");
  state.text = "rewritten";
  frame();
  EXPECT_EQ(edit->toPlainText(), "rewritten");
  EXPECT_LT(edit->cursorRect().right(), 60);
  state.text = "\u05e9\u05dc\u05d5\u05dd";
  frame();
  EXPECT_GT(edit->cursorRect().left(), 115) << "read from the right";
  state.text = "rewritten";
  frame();
  press(Qt::Key_Tab, "\t");
  EXPECT_EQ(Inspector(widget.scene()).focused()->interaction()->accessibilityName, "next");
  EXPECT_FALSE(edit->hasFocus());
  EXPECT_FALSE(focus.get());
  focus.set(true);
  frame();
  EXPECT_TRUE(edit->hasFocus());
  widget.scene().input().pressed({60, 20}, PointerButton::secondary);
  widget.scene().input().released({60, 20}, PointerButton::secondary);
  frame();
  EXPECT_FALSE(edit->isVisible()) << "the menu lies over it";
  press(Qt::Key_Escape);
  scheduler.advance(1);
  EXPECT_TRUE(edit->isVisible() && edit->hasFocus());
  keyboard.clear();
  state.shown = false;
  frame();
  EXPECT_EQ(keyboard, "give ") << "nobody is left to type for";
  EXPECT_FALSE(edit->isVisible());
  const auto showAgain = [&] {
    state.shown = true;
    frame();
    focus.set(true);
    frame();
    ASSERT_TRUE(QApplication::focusWidget());
  };
  showAgain();
  press(Qt::Key_B, "b");
  EXPECT_EQ(state.text->get(), "brewritten");
  state.shown = false;
  frame();
  showAgain();
  press(Qt::Key_C, "c");
  EXPECT_EQ(state.text->get(), "bcrewritten") << "where the caret was";
  state.shown = false;
  frame();
  showAgain();
  QApplication::focusWidget()->clearFocus();
  frame();
  EXPECT_FALSE(focus.get());
  EXPECT_TRUE(widget.scene().input().focus("editor"));
  EXPECT_TRUE(edit->hasFocus()) << "it had the scene's focus all the time";
  const auto undo = [&] {
    static_cast<QPlainTextEdit*>(QApplication::focusWidget())->undo();
    frame();
  };
  undo();
  EXPECT_EQ(state.text->get(), "rewritten");
  undo();
  EXPECT_EQ(state.text->get(), "rewritten") << "what others have written is not the user's to undo";
}

}  // namespace
}  // namespace tarnwick::ui
