#pragma once
#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include "platform/Applications.h"
#include "platform/ChildProcesses.h"
#include "platform/ImageDecoder.h"
#include "platform/SystemLog.h"

namespace tarnwick {

/// Programs that a test plays: it writes their output, ends them, and sees what they are sent.
class MemoryChildProcesses : public ChildProcesses {
 public:
  struct Launch {
    std::string executable;
    std::vector<std::string> arguments;
  };
  std::unique_ptr<ChildProcess> launch(
      const std::string& executable, const std::vector<std::string>& arguments, Events events) override;

  bool isRunning() const { return child_; }
  /// The program writes that.
  void output(const std::string& bytes);
  void exit() {
    const auto tell = events_.onExit;
    tell();
  }
  void fail(const std::string& error) { events_.onFailure(error); }

  std::vector<Launch> launches;
  /// What the programs were sent, one command a line.
  std::string input;
  /// Bytes of output that nobody has read yet.
  std::string unread;

 private:
  class Child;
  void offer();

  Events events_;
  Child* child_ = nullptr;
};

/// Knows the processes that a test puts into it.
class MemoryApplications : public Applications {
 public:
  std::optional<Application> runningApplication(int32_t process, const std::string& name) override;
  bool bringForward(const FilePath& bundle) override { return std::ranges::count(withWindows, bundle) > 0; }
  void start(const FilePath& bundle) override { started.push_back(bundle); }

  std::map<int32_t, Application> running;
  std::vector<std::string> namesAskedFor;
  std::vector<FilePath> withWindows, started;
};

/// Takes the text "WIDTHxHEIGHT RRGGBB" for a picture of one colour.
class MemoryImageDecoder : public ImageDecoder {
 public:
  std::optional<Image> decode(std::string_view bytes) const override;
};

class MemorySystemLog : public SystemLog {
 public:
  void write(const std::string& line) override { lines.push_back(line); }
  std::vector<std::string> lines;
};

}  // namespace tarnwick
