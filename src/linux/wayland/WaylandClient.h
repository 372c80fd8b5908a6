#pragma once
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

class QScreen;
class QWindow;

namespace tarnwick {

/// A window of the toolkit in the compositor's overlay layer: in the middle of an output's top edge, above
/// full-screen windows, and keeping no space free. It must be destroyed before the window's native surface.
class LayerSurface {
 public:
  enum class Keyboard { none, exclusive, onDemand };

  virtual ~LayerSurface() = default;
  /// Whether the compositor gives the window the keyboard: never; always; or when the user clicks on it,
  /// where the compositor knows of that (it counts as always elsewhere).
  virtual void setKeyboard(Keyboard interactivity) = 0;
  /// The compositor has taken it off the screen for good: its output has gone. It may be destroyed then.
  std::function<void()> onClosed;
};

/// One window of a program, as the compositor tells.
struct Toplevel {
  /// Of this list; never given again.
  uint32_t id = 0;
  /// As its desktop entry is called, as a rule.
  std::string application;
  /// Absent when the compositor does not tell.
  std::optional<int32_t> process;
  /// Of the toolkit, by their names; empty while it is on none.
  std::vector<std::string> screens;
  /// It has the keyboard.
  bool active = false;
  bool fullScreen = false;
  /// Not to be seen: minimised, or on another workspace as far as the compositor tells.
  bool hidden = false;
};

/// The windows of programs.
class Toplevels {
 public:
  virtual ~Toplevels() = default;
  /// In the order in which they came.
  virtual std::vector<Toplevel> all() const = 0;
  virtual void activate(uint32_t id) = 0;
  /// Gives the keyboard, which a layer has had, to the window that had it before, where the compositor does not
  /// do so by itself.
  virtual void giveBackKeyboard() = 0;
  /// The list has become another one.
  std::function<void()> onChange;
  /// A window of a program was given the keyboard; also for a moment only, as with sway when somebody clicks
  /// on it while a layer has the keyboard, and keeps it.
  std::function<void()> onActivate;
};

/// What the toolkit does not know of Wayland. It lives in a module of its own, so that nobody needs the
/// libraries of Wayland for X11.
class WaylandClient {
 public:
  virtual ~WaylandClient() = default;

  /// Asks the session's compositor, over a connection of its own, whether windows can have a layer. Waits for
  /// the answer.
  virtual bool offersLayers() = 0;
  /// Begins to use the toolkit's connection, once the toolkit runs on Wayland.
  virtual void start() = 0;

  /// Gives a layer to a window that has a native surface with nothing on it. Null when the compositor
  /// refuses.
  virtual std::unique_ptr<LayerSurface> makeLayerSurface(QWindow& window, QScreen& screen) = 0;
  /// Null where the compositor does not tell.
  virtual Toplevels* toplevels() = 0;
};

/// What the module's one function returns; the caller owns it.
using MakeWaylandClient = WaylandClient*();
inline constexpr const char* makeWaylandClientName = "tarnwickMakeWaylandClient";

}  // namespace tarnwick
