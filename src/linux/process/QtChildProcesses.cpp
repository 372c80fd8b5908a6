#include "linux/process/QtChildProcesses.h"

#include <signal.h>

#include "linux/process/QtChildProcess.h"

namespace tarnwick {
namespace {

class Handle : public ChildProcess {
 public:
  explicit Handle(std::shared_ptr<QtChildProcess> process) : process_(std::move(process)) {}
  void awaitOutput() override { process_->awaitOutput(); }
  std::string read() override { return process_->read(); }
  void write(const std::string& bytes) override { process_->write(bytes); }

 private:
  std::shared_ptr<QtChildProcess> process_;
};

}  // namespace

QtChildProcesses::QtChildProcesses() {
  // Writing to a program that has just ended must only fail. Programs that are started get the default back.
  ::signal(SIGPIPE, SIG_IGN);
}

QtChildProcesses::~QtChildProcesses() = default;

void QtChildProcesses::allowStarting() {
  mayStart_ = true;
  for (const auto& each : std::exchange(waiting_, {})) {
    if (const auto process = each.lock()) process->start();
  }
}

std::unique_ptr<ChildProcess> QtChildProcesses::launch(
    const std::string& executable, const std::vector<std::string>& arguments, Events events) {
  auto process = std::make_shared<QtChildProcess>(executable, arguments, std::move(events));
  if (mayStart_) {
    process->start();
  } else {
    waiting_.push_back(process);
  }
  return std::make_unique<Handle>(std::move(process));
}

}  // namespace tarnwick
