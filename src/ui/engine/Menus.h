#pragma once
#include <optional>
#include <vector>

#include "base/ObservableObject.h"
#include "ui/Menu.h"
#include "ui/engine/Node.h"

namespace tarnwick::ui {

class Scene;

/// The one menu of a scene that may be open. It is made of views like any other, in front of all others.
class Menus {
 public:
  explicit Menus(Scene& scene) : scene_(scene) {}

  /// Opens a menu beside `anchor` (points of the scene) for a view, in place of an open one. `byKey`: with
  /// its first item chosen.
  void open(std::vector<MenuItem> items, const Rect& anchor, Node& opener, bool byKey);
  void close();
  bool isOpen() const { return open_.has_value(); }
  /// Does what a click on the item at `point` would do.
  void choose(Point point);
  /// Closes the menu of a view that has gone.
  void forgetVanished();

  /// Where it is, as presented; none while there is no menu.
  std::optional<Rect> frame() const;
  View view();

 private:
  struct Open {
    std::vector<MenuItem> items;
    Rect anchor;
    WeakNode opener;
    bool byKey;
  };
  View panel();
  View row(const MenuItem& item, bool hasChecks);
  void show(std::optional<Open> open);

  Scene& scene_;
  std::optional<Open> open_;
  ObservableObject changes_;
};

}  // namespace tarnwick::ui
