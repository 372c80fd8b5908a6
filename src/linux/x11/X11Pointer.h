#pragma once
#include "base/Scheduler.h"
#include "linux/x11/X11Connection.h"
#include "linux/x11/X11Screens.h"
#include "platform/Pointer.h"

namespace tarnwick {

/// The pointer of the X server. Its raw events tell of motion over any program's window; drags of other
/// programs show in the owner of the drag-and-drop selection.
class X11Pointer : public Pointer {
 public:
  X11Pointer(X11Connection& connection, const X11Screens& screens, Scheduler& scheduler);
  ~X11Pointer() override;

  /// Under XWayland none while the pointer is over no X window: where it is then, the server is not told.
  std::optional<Point> position() const override;
  bool isKnownEverywhere() const override { return !connection_.isXWayland(); }
  bool buttonDown() const override;
  int dragChangeCount() const override { return dragChangeCount_; }
  /// Tells files from everything else: the list holds their type or nothing.
  std::optional<std::vector<std::string>> dragTypes() const override { return dragTypes_; }
  Subscription observe(std::function<void()> onActivity) override;
  void setWantsActivity(bool wants) override;

  /// Where the panel begins, in global points.
  void setOrigin(Point origin) { origin_ = origin; }
  /// Something moved the pointer that shows in no raw event: it crossed the edge of a window of this program
  /// after having been warped, or coming from a window that is the Wayland compositor's business.
  void noteActivity();

 private:
  struct Query {
    Point pixels;
    bool buttonDown = false;
    bool overWindow = false;
  };

  const Query& query() const;
  void handle(const xcb_generic_event_t& event);
  void dragStarted(xcb_timestamp_t timestamp);
  void askForFiles(std::vector<xcb_timestamp_t> times);
  void askAgain();
  void conversionArrived(const xcb_selection_notify_event_t& event);
  bool holdsFiles(xcb_atom_t property) const;

  X11Connection& connection_;
  const X11Screens& screens_;
  Scheduler& scheduler_;
  /// Never shown: receives the drag's data.
  xcb_window_t requestor_;
  Point origin_;
  bool wantsActivity_ = false;
  mutable Query query_;
  mutable std::optional<uint64_t> queryTurn_;

  int dragChangeCount_ = 0;
  std::optional<std::vector<std::string>> dragTypes_;
  xcb_timestamp_t dragTimestamp_ = 0;
  /// The times at which files were asked for and that have no answer yet.
  std::vector<xcb_timestamp_t> asked_;
  int refusals_ = 0;
  Task askingAgain_;
  ObservableObject activity_;
  Subscription events_;
};

}  // namespace tarnwick
