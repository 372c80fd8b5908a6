#include "ui/SceneAccessibility.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <map>
#include <memory>

#include "ui/SceneWidget.h"

namespace tarnwick::ui {
namespace {

QAccessible::Role toQt(Role role) {
  switch (role) {
    case Role::button:
      return QAccessible::Button;
    case Role::slider:
      return QAccessible::Slider;
    case Role::list:
      return QAccessible::List;
    case Role::text:
      return QAccessible::StaticText;
    case Role::image:
      return QAccessible::Graphic;
    case Role::none:
      break;
  }
  return QAccessible::NoRole;
}

/// One control of a scene, by its place among the controls that can be seen. The scene is asked each time:
/// views come and go under the reader's hands.
class AccessibleControl : public QAccessibleInterface, public QAccessibleActionInterface {
 public:
  AccessibleControl(SceneWidget& widget, size_t index) : widget_(&widget), index_(index) {}

  bool isValid() const override { return control().has_value(); }
  QObject* object() const override { return nullptr; }
  QWindow* window() const override { return widget_->window()->windowHandle(); }
  QAccessibleInterface* parent() const override { return QAccessible::queryAccessibleInterface(widget_); }
  QAccessibleInterface* child(int) const override { return nullptr; }
  QAccessibleInterface* childAt(int, int) const override { return nullptr; }
  int childCount() const override { return 0; }
  int indexOfChild(const QAccessibleInterface*) const override { return -1; }
  QAccessible::Role role() const override {
    const auto found = control();
    return found ? toQt(found->role) : QAccessible::NoRole;
  }
  QAccessible::State state() const override {
    QAccessible::State state;
    state.invalid = !isValid();
    return state;
  }
  QString text(QAccessible::Text kind) const override {
    const auto found = control();
    return found && kind == QAccessible::Name ? QString::fromStdString(found->name) : QString();
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
    return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface*>(this) : nullptr;
  }
  QStringList actionNames() const override {
    const auto found = control();
    return found && found->press ? QStringList{pressAction()} : QStringList();
  }
  void doAction(const QString& name) override {
    const auto found = control();
    if (found && found->press && name == pressAction()) found->press();
  }
  QStringList keyBindingsForAction(const QString&) const override { return {}; }

 private:
  std::optional<Scene::Control> control() const {
    const auto controls = widget_->scene().controls();
    return index_ < controls.size() ? std::optional(controls[index_]) : std::nullopt;
  }

  SceneWidget* widget_;
  size_t index_;
};

class AccessibleScene : public QAccessibleWidget {
 public:
  explicit AccessibleScene(SceneWidget& widget)
      : QAccessibleWidget(&widget, QAccessible::Grouping, "Tarnwick") {}
  ~AccessibleScene() override {
    for (const auto& [index, id] : children_) QAccessible::deleteAccessibleInterface(id);
  }

  int childCount() const override { return int(scene().controls().size()); }
  QAccessibleInterface* child(int index) const override {
    if (index < 0 || index >= childCount()) return nullptr;
    const auto known = children_.find(index);
    if (known != children_.end()) return QAccessible::accessibleInterface(known->second);
    auto* made = new AccessibleControl(*static_cast<SceneWidget*>(widget()), size_t(index));
    children_[index] = QAccessible::registerAccessibleInterface(made);
    return made;
  }
  int indexOfChild(const QAccessibleInterface* wanted) const override {
    for (const auto& [index, id] : children_) {
      if (QAccessible::accessibleInterface(id) == wanted) return index;
    }
    return -1;
  }
  QAccessibleInterface* childAt(int x, int y) const override {
    for (int i = 0; i < childCount(); ++i) {
      if (child(i)->rect().contains(x, y)) return child(i);
    }
    return nullptr;
  }

 private:
  Scene& scene() const { return static_cast<SceneWidget*>(widget())->scene(); }
  mutable std::map<int, QAccessible::Id> children_;
};

QAccessibleInterface* makeInterface(const QString&, QObject* object) {
  auto* widget = dynamic_cast<SceneWidget*>(object);
  return widget ? new AccessibleScene(*widget) : nullptr;
}

}  // namespace

void installSceneAccessibility() {
  [[maybe_unused]] static const bool installed = [] {
    QAccessible::installFactory(makeInterface);
    return true;
  }();
}

}  // namespace tarnwick::ui
