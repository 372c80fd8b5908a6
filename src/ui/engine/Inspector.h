#pragma once
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "ui/engine/Scene.h"

namespace tarnwick::ui {

/// Asks a scene what it shows, and acts on it as the pointer does: for tests.
class Inspector {
 public:
  explicit Inspector(Scene& scene) : scene_(scene) {}

  /// A node of the scene; valid until the next change of its views.
  class Found {
   public:
    explicit Found(Node& node) : node_(&node) {}
    /// "Text", "Symbol", "Shape", "HStack", …
    std::string kind() const;
    /// The text of a `Text`, the name of a `Symbol`.
    std::string content() const;
    std::string id() const;
    /// In points of the scene, as presented now with all effects, and as it will be at rest without them.
    Rect frame() const;
    Rect targetFrame() const;
    /// The product of the opacities of the node and those around it, as presented.
    double opacity() const;
    /// Sum of the blurs of the node and those around it.
    double blur() const;
    /// Its own scale and that of the nodes around it, horizontally.
    double scale() const;
    /// The colour that a text, a symbol or a shape is drawn in (its first one), as presented.
    Color color() const;
    Font font() const;
    bool isLeaving() const;
    /// It, or something around it, is on its way.
    bool isMoving() const;
    const Interaction* interaction() const;
    Found parent() const;
    std::vector<Found> children() const;

   private:
    friend class Inspector;
    Node* node_;
  };

  using Wanted = std::function<bool(const Found&)>;
  /// All nodes, in the order of drawing; those that are leaving included.
  std::vector<Found> all(const Wanted& wanted) const;
  std::optional<Found> first(const Wanted& wanted) const;
  std::optional<Found> text(const std::string& content) const;
  std::optional<Found> symbol(const std::string& name) const;
  std::optional<Found> id(const std::string& id) const;
  std::vector<Found> kind(const std::string& kind) const;
  /// The control that assistive technology knows by that name.
  std::optional<Found> control(const std::string& name) const;
  /// What can be read, from the back to the front, without what is leaving.
  std::vector<std::string> texts() const;
  std::vector<std::string> symbols() const;

  /// How many views have been made anew so far because of a change, not with the view around them.
  unsigned renewals() const { return scene_.renewals_; }

  /// Takes over what changed and moves to the present. @return true while something moves.
  bool step() { return scene_.frame(); }
  void hover(const Found& found);
  void hover(Point point);
  void leave();
  void press(const Found& found, PointerButton button = PointerButton::primary);
  void release(Point point, PointerButton button = PointerButton::primary);
  void tap(const Found& found);
  void tap(Point point);
  void drag(Point from, Point to);
  bool scroll(const Found& found, Point delta);
  /// @return whether somebody had a use for it
  bool key(Key key, Modifiers modifiers = {});
  /// The view with the keyboard's focus.
  std::optional<Found> focused() const;

 private:
  Scene& scene_;
};

}  // namespace tarnwick::ui
