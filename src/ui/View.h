#pragma once
#include <functional>
#include <initializer_list>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/Animation.h"
#include "base/Image.h"
#include "ui/AnyValue.h"
#include "ui/Effects.h"
#include "ui/Environment.h"
#include "ui/Interaction.h"
#include "ui/Shape.h"
#include "ui/Transition.h"

namespace tarnwick::ui {

class Canvas;
class Element;
struct Attributes;
struct Description;
template<typename T>
class State;

/// As much as there is.
inline constexpr double infinity = std::numeric_limits<double>::infinity();

/// Names that belong together: views with the same matched-geometry id in one namespace are one moving thing.
struct Namespace {
  int number = 0;
  static Namespace make();
  friend bool operator==(Namespace, Namespace) = default;
};

/// Sides of a rectangle, to be combined with `|`.
enum class Edge { top = 1, leading = 2, bottom = 4, trailing = 8, horizontal = 10, vertical = 5, all = 15 };
constexpr Edge operator|(Edge a, Edge b) { return Edge(int(a) | int(b)); }
constexpr bool has(Edge set, Edge edge) { return (int(set) & int(edge)) != 0; }

/// A box around a view: a fixed size, or how far the view may stretch. What is absent is left to the view.
struct FrameOptions {
  std::optional<double> width = {}, height = {};
  /// `infinity` fills what is offered.
  std::optional<double> maxWidth = {}, maxHeight = {};
  UnitPoint align = UnitPoint::center;
  friend bool operator==(const FrameOptions&, const FrameOptions&) = default;
};

/// A description of what should be on the screen: a cheap value without effect, made anew whenever the state
/// behind it changes. A default-constructed view is nothing at all.
///
/// Decorators return the decorated view and compose by chaining, inside out: `a.padding(4).background(b)` has
/// `b` behind the padding, too. Nothing decorated is nothing: what keeps a place while it is empty stands in
/// a stack, and that is decorated.
class View {
 public:
  View() = default;
  explicit View(std::shared_ptr<const Element> element, std::vector<View> children = {});

  bool isEmpty() const { return !description_; }
  const Description& description() const { return *description_; }
  const std::shared_ptr<const Description>& shared() const { return description_; }

  // Layout
  View frame(const FrameOptions& options) const;
  View padding(double length) const;
  View padding(Edge edges, double length) const;
  /// The largest size of that ratio (width to height) that fits what is offered.
  View aspectRatio(double ratio) const;
  /// In a stack it gets what it wants before the others share what is left.
  View prioritized() const;
  /// Another view behind this one, offered this one's size.
  View background(View behind, UnitPoint align = UnitPoint::center) const;
  /// Another view before this one, offered this one's size.
  View overlay(View before, UnitPoint align = UnitPoint::center) const;

  // Effects: animated, without influence on the layout
  View opacity(double opacity) const;
  View offset(Point offset) const;
  View scaleEffect(double scale, UnitPoint anchor = UnitPoint::center) const;
  View scaleEffect(double x, double y, UnitPoint anchor = UnitPoint::center) const;
  View rotation(double degrees, UnitPoint anchor = UnitPoint::center) const;
  View blur(double radius) const;
  View brightness(double amount) const;
  /// Cuts off what lies outside the shape.
  View clipShape(Shape shape) const;
  /// `radius` is the standard deviation in points. Several shadows add up, the first one on top.
  View shadow(Color color, double radius, Point offset = {}) const;

  // Inherited by everything inside
  View font(const Font& font) const;
  View foreground(Color color) const;
  View monospacedDigits() const;
  View truncated(Truncation truncation) const;
  View contentTransition(ContentTransition transition) const;

  // Identity and motion
  /// Told apart from its siblings by this key instead of by its place.
  View id(std::string key) const;
  /// Whenever `value` changes, what changes in this view does so along `animation`.
  View animation(const Animation& animation, AnyValue value) const;
  View transition(Transition transition) const;
  /// A view that vanishes while another one with the same id appears hands its place over: the new one sets
  /// out from there.
  View matchedGeometry(std::string id, Namespace names) const;
  /// The view hops once whenever `value` changes; with `onAppear` also when it is first shown.
  View bounce(AnyValue value, bool onAppear = false) const;
  /// The view keeps dimming and lighting up gently.
  View pulse() const;
  /// Called once, after the view is shown for the first time.
  View onAppear(std::function<void()> action) const;

  // The pointer. What is in front comes first, then what that is in. Handlers of one kind on one view all
  // run.
  /// The area that takes the pointer, instead of the frame.
  View contentShape(Shape shape) const;
  View onTap(std::function<void()> action, bool enabled = true) const;
  View onDoubleTap(std::function<void()> action) const;
  View onHover(std::function<void(bool)> action) const;
  View onHover(State<bool> hovering) const;
  View onPress(State<bool> pressed) const;
  View onDrag(DragGesture gesture) const;
  /// All that a button of the pointer does; see `Interaction`.
  View onPointer(std::function<bool(const PointerEvent&)> action) const;
  /// A menu that opens below the view when it is pressed; `MenuButton` is one.
  View menu(std::function<std::vector<MenuItem>()> items) const;
  /// A menu that opens where the view is pressed with the secondary button, or by the menu key.
  View contextMenu(std::function<std::vector<MenuItem>()> items) const;
  /// The view can be dragged out of the window, as these files.
  View dragsFiles(std::function<std::vector<FilePath>()> files) const;
  /// What the pointer looks like over the view.
  View cursor(Cursor cursor) const;
  View tooltip(std::string text) const;
  View allowsHitTesting(bool allows) const;

  // The keyboard. Its focus goes to what is a control for assistive technology and can be tapped or adjusted.
  /// Keys while the focus is inside; for what takes no focus, also those that nobody else uses. @return used
  /// up
  View onKey(std::function<bool(const KeyEvent&)> action) const;
  /// The same for one key without modifiers.
  View onKey(Key key, std::function<void()> action) const;
  /// The focus may go there although nothing is done by a click.
  View focusable() const;
  /// Tells of the focus; the view shows it by itself then, instead of by a ring.
  View onFocus(std::function<void(bool)> action) const;
  View onFocus(State<bool> focused) const;
  /// While the view is there keys and focus stay inside.
  View modal() const;
  /// Arrow keys along the axis go from one control inside to the next, and Tab stops here once.
  View arrowKeys(Axis axis) const;

  /// What the view is for assistive technology.
  View accessibility(Role role, std::string name) const;
  /// Tells assistive technology that the control is on or off.
  View accessibilityChecked(bool checked) const;
  /// What the control is set to; arrow keys alter it.
  View accessibilityValue(AdjustableValue value) const;

 private:
  /// The view inside of an element of its own.
  View inside(std::shared_ptr<const Element> element) const;
  /// The same view with other attributes; defined in Description.h.
  template<typename Change>
  View with(Change change) const;
  /// Scale and rotation share their anchor, and so count as one.
  enum class EffectKind { opacity = 1, offset = 2, scaleOrRotation = 4, blur = 8, brightness = 16 };
  View effect(EffectKind kind, const std::function<void(Effects&)>& change) const;
  View interaction(const std::function<void(Interaction&)>& change) const;

  std::shared_ptr<const Description> description_;
};

using Views = std::vector<View>;

/// Children of a stack: single views and lists of views side by side.
class ViewList {
 public:
  struct Item {
    Views views;
    Item(View view) : views{std::move(view)} {}
    Item(Views list) : views(std::move(list)) {}
  };
  ViewList(std::initializer_list<Item> items);
  ViewList(Views list) : views(std::move(list)) {}
  Views views;
};

enum class Align { leading, center, trailing, top, bottom, firstTextBaseline };

struct StackOptions {
  double spacing = 0;
  Align align = Align::center;
};

/// Side by side; what is flexible shares the space that is left.
View HStack(StackOptions options, ViewList children);
/// One below the other.
View VStack(StackOptions options, ViewList children);
/// On top of each other, the last one in front.
View ZStack(UnitPoint align, ViewList children);
/// Takes all space that is left along its stack.
View Spacer();

/// One line of text in the inherited font and colour.
View Text(std::string text);
/// A piece of a line; without a colour in the inherited one.
struct TextPiece {
  std::string text;
  std::optional<Color> color = {};
  friend bool operator==(const TextPiece&, const TextPiece&) = default;
};
/// A line of text before a background.
struct TextLine {
  std::vector<TextPiece> pieces;
  Color background = colors::clear;
  friend bool operator==(const TextLine&, const TextLine&) = default;
};
/// By how many characters a line is indented where it goes on.
inline constexpr int wrappedIndent = 2;
/// Lines that are to be read to the letter, in a monospaced font: all of every line is shown, from left to
/// right in the order in which it stands there, whatever its scripts are; a line that is full goes on below,
/// indented.
View TextLines(std::vector<TextLine> lines);
/// A text whose digits stand in cells of one width, and roll to the new ones when it changes.
View RollingNumber(std::string text, const Animation& animation = easeInOut(0.35));
/// A symbol by name, sized by the inherited font, in the inherited colour. An unknown name draws nothing and
/// is warned of.
View Symbol(std::string name);
/// True when there is a glyph for the name.
bool isSymbol(const std::string& name);

enum class ContentMode { fit, fill };
/// A picture scaled to the space it is given, cropped when it is to fill it.
View ImageView(Image image, ContentMode mode = ContentMode::fit);

/// Free drawing: `draw` is called with the size; `input` is all that the drawing depends on, so that an
/// unchanged one is not drawn again.
View CanvasView(AnyValue input, std::function<void(Canvas&, Size)> draw);

/// A view that reads its own size: `body` is called with the size that is offered.
View GeometryReader(std::function<View(Size)> body);

/// A window on a larger content, without scroll bars: takes all that is offered along its axis, and across
/// what its content needs.
View ScrollView(Axis axis, View content);

/// A long list of items of one length along it but for one, of which only those in view are built. Across it
/// they are as large as the list.
struct LazyItems {
  size_t count = 0;
  double length = 0;
  /// The item that is longer than the others, and by how much.
  std::optional<size_t> longer = {};
  double excess = 0;
  double spacing = 0;
  /// Identity of an item; does not depend on its place.
  std::function<std::string(size_t)> key;
  std::function<View(size_t)> item;
};
/// They belong into a `ScrollView` of the same axis.
View LazyVStack(LazyItems items);
View LazyHStack(LazyItems items);

/// Draws its content without adding anything: a place for decorators.
View Group(View content);

}  // namespace tarnwick::ui
