#pragma once
#include <vector>

#include "platform/ChildProcesses.h"

namespace tarnwick {

class QtChildProcess;

/// Programs over pipes, beside the event loop.
class QtChildProcesses : public ChildProcesses {
 public:
  QtChildProcesses();
  ~QtChildProcesses() override;

  /// Programs that are launched wait for this. The notch is to be on the screen before anything else takes
  /// the machine's time.
  void allowStarting();

  std::unique_ptr<ChildProcess> launch(
      const std::string& executable, const std::vector<std::string>& arguments, Events events) override;

 private:
  bool mayStart_ = false;
  std::vector<std::weak_ptr<QtChildProcess>> waiting_;
};

}  // namespace tarnwick
