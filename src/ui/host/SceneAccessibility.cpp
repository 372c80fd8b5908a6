#include "ui/host/SceneAccessibility.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QApplication>
#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

#include "ui/host/SceneWidget.h"

namespace tarnwick::ui {
namespace {

QAccessible::Role toQt(Role role) {
  switch (role) {
    case Role::button:
      return QAccessible::Button;
    case Role::menuButton:
      return QAccessible::ButtonMenu;
    case Role::menu:
      return QAccessible::PopupMenu;
    case Role::menuItem:
      return QAccessible::MenuItem;
    case Role::textField:
      return QAccessible::EditableText;
    case Role::slider:
      return QAccessible::Slider;
    case Role::list:
      return QAccessible::List;
    case Role::text:
      return QAccessible::StaticText;
    case Role::image:
      return QAccessible::Graphic;
    case Role::notification:
      return QAccessible::Notification;
    case Role::none:
      break;
  }
  return QAccessible::NoRole;
}

void send(QAccessible::Event type, QAccessibleInterface& about) {
  QAccessibleEvent event(&about, type);
  QAccessible::updateAccessibility(&event);
}

/// One control of a scene, for as long as its view is there.
class AccessibleControl
    : public QAccessibleInterface,
      public QAccessibleActionInterface,
      public QAccessibleValueInterface {
 public:
  AccessibleControl(SceneWidget& widget, Scene::Control control)
      : widget_(&widget), known_(std::move(control)) {}

  unsigned long controlId() const { return known_.id; }

  /// Takes over what the control is now, and tells what is new about it.
  void update(Scene::Control now) {
    const Scene::Control before = std::exchange(known_, std::move(now));
    if (known_.name != before.name) send(QAccessible::NameChanged, *this);
    QAccessible::State changed;
    changed.checked = known_.checked != before.checked;
    changed.focused = known_.hasFocus != before.hasFocus;
    if (changed.checked || changed.focused) {
      QAccessibleStateChangeEvent event(this, changed);
      QAccessible::updateAccessibility(&event);
    }
    if (known_.hasFocus && !before.hasFocus) send(QAccessible::Focus, *this);
    if (known_.value && before.value && known_.value->now != before.value->now) {
      QAccessibleValueChangeEvent event(this, known_.value->now);
      QAccessible::updateAccessibility(&event);
    }
  }

  bool isValid() const override { return true; }
  QObject* object() const override { return nullptr; }
  QWindow* window() const override { return widget_->window()->windowHandle(); }
  QAccessibleInterface* parent() const override { return QAccessible::queryAccessibleInterface(widget_); }
  QAccessibleInterface* child(int) const override { return nullptr; }
  QAccessibleInterface* childAt(int, int) const override { return nullptr; }
  int childCount() const override { return 0; }
  int indexOfChild(const QAccessibleInterface*) const override { return -1; }
  QAccessible::Role role() const override { return toQt(known_.role); }
  QAccessible::State state() const override {
    QAccessible::State state;
    state.checkable = known_.checked.has_value();
    state.checked = known_.checked.value_or(false);
    state.focusable = known_.takesFocus;
    state.focused = known_.hasFocus;
    return state;
  }
  QString text(QAccessible::Text kind) const override {
    if (kind == QAccessible::Name) return QString::fromStdString(known_.name);
    if (kind == QAccessible::Value && known_.value) return QString::fromStdString(known_.value->text);
    return {};
  }
  void setText(QAccessible::Text, const QString&) override {}
  QRect rect() const override {
    const auto found = control();
    if (!found) return {};
    const Rect& f = found->frame;
    const QRect local = QRectF(f.x, f.y, f.width, f.height).toAlignedRect();
    return {widget_->mapToGlobal(local.topLeft()), local.size()};
  }

  void* interface_cast(QAccessible::InterfaceType type) override {
    if (type == QAccessible::ActionInterface) return static_cast<QAccessibleActionInterface*>(this);
    if (type == QAccessible::ValueInterface && known_.value)
      return static_cast<QAccessibleValueInterface*>(this);
    return nullptr;
  }
  QStringList actionNames() const override {
    QStringList names;
    if (known_.press) names << pressAction();
    if (known_.takesFocus) names << setFocusAction();
    return names;
  }
  void doAction(const QString& name) override {
    const auto found = control();
    if (!found) return;
    if (found->press && name == pressAction()) found->press();
    if (name == setFocusAction()) {
      widget_->scene().focusControl(known_.id);
      widget_->takeKeyboard();
    }
  }
  QStringList keyBindingsForAction(const QString&) const override { return {}; }

  QVariant currentValue() const override { return known_.value->now; }
  QVariant minimumValue() const override { return known_.value->least; }
  QVariant maximumValue() const override { return known_.value->most; }
  QVariant minimumStepSize() const override { return known_.value->step; }
  void setCurrentValue(const QVariant& value) override {
    const auto found = control();
    if (found && found->value && found->value->set)
      found->value->set(std::clamp(value.toDouble(), found->value->least, found->value->most));
  }

 private:
  /// As it is at this moment: views move, and come and go, under the reader's hands.
  std::optional<Scene::Control> control() const {
    for (Scene::Control& control : widget_->scene().controls()) {
      if (control.id == known_.id) return std::move(control);
    }
    return std::nullopt;
  }

  SceneWidget* widget_;
  Scene::Control known_;
};

/// The controls of a scene as assistive technology knows them: those of the last `update`. None before: the
/// toolkit makes this also where nobody listens.
class AccessibleScene : public QAccessibleWidget {
 public:
  explicit AccessibleScene(SceneWidget& widget)
      : QAccessibleWidget(&widget, QAccessible::Grouping, "Tarnwick") {}
  ~AccessibleScene() override {
    for (AccessibleControl* child : children_) release(child);
  }

  /// Takes over what the scene shows now, and tells the differences.
  void update() {
    std::vector<Scene::Control> controls = sceneWidget().scene().controls();
    const auto isGone = [&](const AccessibleControl* child) {
      return std::ranges::find(controls, child->controlId(), &Scene::Control::id) == controls.end();
    };
    for (size_t i = 0; i < children_.size();) {
      if (!isGone(children_[i])) {
        ++i;
        continue;
      }
      send(QAccessible::ObjectDestroyed, *children_[i]);
      release(children_[i]);
      children_.erase(children_.begin() + std::ptrdiff_t(i));
    }

    std::vector<AccessibleControl*> made;
    const std::vector<AccessibleControl*> before = std::exchange(children_, {});
    for (const Scene::Control& control : controls) {
      const auto known = std::ranges::find(before, control.id, &AccessibleControl::controlId);
      children_.push_back(known != before.end() ? *known : made.emplace_back(make(control)));
    }
    for (size_t i = 0; i < controls.size(); ++i) children_[i]->update(std::move(controls[i]));
    for (AccessibleControl* child : made) {
      send(QAccessible::ObjectCreated, *child);
      send(QAccessible::ObjectShow, *child);
      if (child->state().focused) send(QAccessible::Focus, *child);
    }
  }

  int childCount() const override { return int(children_.size()); }
  QAccessibleInterface* child(int index) const override {
    return index >= 0 && index < childCount() ? children_[size_t(index)] : nullptr;
  }
  int indexOfChild(const QAccessibleInterface* wanted) const override {
    const auto found = std::ranges::find(children_, wanted);
    return found == children_.end() ? -1 : int(found - children_.begin());
  }
  QAccessibleInterface* childAt(int x, int y) const override {
    // The frontmost is drawn last.
    const auto found = std::find_if(children_.rbegin(), children_.rend(),
        [=](const auto* child) { return child->rect().contains(x, y); });
    return found == children_.rend() ? nullptr : *found;
  }

 private:
  SceneWidget& sceneWidget() const { return *static_cast<SceneWidget*>(widget()); }
  AccessibleControl* make(Scene::Control control) {
    auto* made = new AccessibleControl(sceneWidget(), std::move(control));
    QAccessible::registerAccessibleInterface(made);
    return made;
  }
  static void release(AccessibleControl* child) {
    QAccessible::deleteAccessibleInterface(QAccessible::uniqueId(child));
  }

  /// In the order of drawing; owned by the toolkit's registry.
  std::vector<AccessibleControl*> children_;
};

QAccessibleInterface* makeInterface(const QString&, QObject* object) {
  auto* widget = dynamic_cast<SceneWidget*>(object);
  return widget ? new AccessibleScene(*widget) : nullptr;
}

/// A reader that starts later finds what is there already.
class Activation : public QAccessible::ActivationObserver {
 public:
  void accessibilityActiveChanged(bool) override {
    for (QWidget* widget : QApplication::allWidgets()) {
      if (auto* scene = dynamic_cast<SceneWidget*>(widget)) tellAssistiveTechnology(*scene);
    }
  }
};

}  // namespace

void installSceneAccessibility() {
  [[maybe_unused]] static const bool installed = [] {
    QAccessible::installFactory(makeInterface);
    static Activation activation;
    QAccessible::installActivationObserver(&activation);
    return true;
  }();
}

void tellAssistiveTechnology(SceneWidget& widget) {
  if (!QAccessible::isActive()) return;
  auto* scene = dynamic_cast<AccessibleScene*>(QAccessible::queryAccessibleInterface(&widget));
  if (scene) scene->update();
}

}  // namespace tarnwick::ui
