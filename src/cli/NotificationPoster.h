#pragma once
#include <string_view>

#include "platform/NotificationCenter.h"

namespace tarnwick {

/// Broadcasts notifications to the running overlay.
class NotificationPoster {
 public:
  virtual ~NotificationPoster() = default;
  /// Fire and forget: returns when the notification is under way or cannot be delivered, and never fails.
  virtual void post(std::string_view name, const StringMap& userInfo) = 0;
};

}  // namespace tarnwick
