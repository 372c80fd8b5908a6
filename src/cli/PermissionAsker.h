#pragma once
#include <optional>

#include "platform/PermissionRequests.h"

namespace tarnwick {

/// Asks the user for a permission, where there is somebody who can.
class PermissionAsker {
 public:
  virtual ~PermissionAsker() = default;
  /// Asks the running overlay and waits for the answer, for as long as a hook may take.
  /// @param event a hook event with `toolInputKey`
  /// @param reader where the answer is to be written: once nobody reads it any more, the answer does not
  /// matter
  /// @return none where there is nobody to ask, who then has not heard of the event either
  virtual std::optional<PermissionAnswer> ask(const StringMap& event, int reader) = 0;
};

}  // namespace tarnwick
