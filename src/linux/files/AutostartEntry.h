#pragma once
#include <string>

#include "platform/Folders.h"
#include "platform/LoginItem.h"

namespace tarnwick {

/// The program's desktop entry in the session's folder "autostart" (Desktop Application Autostart
/// Specification of freedesktop.org).
class AutostartEntry : public LoginItem {
 public:
  /// @param program the absolute path of what shall be started
  AutostartEntry(const Folders& folders, std::string program);

  bool isEnabled() const override;
  void setEnabled(bool enabled) override;

 private:
  std::string contents() const;

  const std::string folder_, program_;
};

}  // namespace tarnwick
