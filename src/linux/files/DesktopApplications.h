#pragma once
#include "linux/files/DesktopEntry.h"
#include "linux/files/QtImageDecoder.h"
#include "platform/Applications.h"
#include "platform/WindowActivation.h"

namespace tarnwick {

/// Programs by their desktop entries: the file of one is what opens the application.
class DesktopApplications : public Applications {
 public:
  DesktopApplications(WindowActivation& activation, const QtImageDecoder& images)
      : activation_(activation), images_(images) {}

  std::optional<Application> runningApplication(int32_t process, const std::string& name) override;
  void open(const FilePath& bundle) override;

 private:
  WindowActivation& activation_;
  const QtImageDecoder& images_;
};

}  // namespace tarnwick
