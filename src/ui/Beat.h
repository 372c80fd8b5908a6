#pragma once
#include "base/Date.h"

namespace tarnwick::ui {

/// When a view is made anew by the clock: every `interval` seconds, counted from `origin`, until `end`. Views
/// of one interval and origin beat together.
struct Beat {
  double interval;
  Date origin = {};
  Date end = Date::distantFuture();
  friend bool operator==(const Beat&, const Beat&) = default;
};

}  // namespace tarnwick::ui
