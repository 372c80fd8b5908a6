#pragma once
#include "platform/Applications.h"
#include "platform/linux/DesktopEntry.h"
#include "platform/linux/QtImageDecoder.h"
#include "platform/linux/X11Connection.h"

namespace tarnwick {

/// Programs by their desktop entries: the file of one is what opens the application.
class DesktopApplications : public Applications {
 public:
  DesktopApplications(X11Connection& connection, const QtImageDecoder& images)
      : connection_(connection), images_(images) {}

  std::optional<Application> runningApplication(int32_t process, const std::string& name) override;
  void open(const FilePath& bundle) override;

 private:
  bool bringForward(const DesktopEntry& entry);

  X11Connection& connection_;
  const QtImageDecoder& images_;
};

}  // namespace tarnwick
