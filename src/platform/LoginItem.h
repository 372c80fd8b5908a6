#pragma once

namespace tarnwick {

/// Whether the session starts this program when the user logs in.
class LoginItem {
 public:
  virtual ~LoginItem() = default;
  virtual bool isEnabled() const = 0;
  /// Failures show in `isEnabled`.
  virtual void setEnabled(bool enabled) = 0;
};

}  // namespace tarnwick
