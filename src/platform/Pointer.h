#pragma once
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "base/Geometry.h"
#include "base/ObservableObject.h"

namespace tarnwick {

/// The pointer as a panel sees it, its buttons, and what it drags.
class Pointer {
 public:
  virtual ~Pointer() = default;
  /// In the panel's coordinates, also beside the panel; none where the session does not tell (the pointer is
  /// over another program's window).
  virtual std::optional<Point> position() const = 0;
  /// The session tells its position wherever it is, not over the panel only.
  virtual bool isKnownEverywhere() const = 0;
  /// One of the buttons is held, as far as the session tells. A wheel has none.
  virtual bool buttonDown() const = 0;

  /// A counter that differs after each start of a drag, by whatever program.
  virtual int dragChangeCount() const = 0;
  /// The MIME types that the running drag offers; none while they are not known (yet). Files are
  /// "text/uri-list".
  virtual std::optional<std::vector<std::string>> dragTypes() const = 0;

  /// Calls `onActivity` on the main thread when the pointer moved, a button changed, or a drag started or
  /// told its types, as long as `wantsActivity` is set. Reports nothing otherwise, and then costs nothing.
  virtual Subscription observe(std::function<void()> onActivity) = 0;
  virtual void setWantsActivity(bool wants) = 0;
};

inline constexpr const char* fileListType = "text/uri-list";

}  // namespace tarnwick
