#pragma once
#include <QObject>
#include <QProcess>
#include <QSocketNotifier>
#include <memory>

#include "platform/ChildProcesses.h"

namespace tarnwick {

/// One program and its two pipes. What it writes stays in its pipe until it is read: it cannot fill our
/// memory.
class QtChildProcess {
 public:
  QtChildProcess(const std::string& executable, const std::vector<std::string>& arguments,
      ChildProcesses::Events events);
  QtChildProcess(const QtChildProcess&) = delete;
  ~QtChildProcess();

  void start();
  void awaitOutput();
  std::string read();
  void write(const std::string& bytes);

 private:
  void openPipes();

  const ChildProcesses::Events events_;
  QProcess process_;
  /// Our ends, and the child's until it has them. -1: closed.
  int output_ = -1, input_ = -1, childOutput_ = -1, childInput_ = -1;
  bool awaitsOutput_ = false;
  std::unique_ptr<QSocketNotifier> notifier_;
};

}  // namespace tarnwick
