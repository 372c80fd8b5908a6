#include "linux/process/ProcProcesses.h"

#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <QSocketNotifier>
#include <algorithm>
#include <filesystem>
#include <fstream>

#include "base/Descriptor.h"
#include "base/ProcessStatus.h"

namespace tarnwick {
namespace {

constexpr size_t longestArguments = 8192, longestEnvironment = 256 << 10, mostAncestors = 32;

std::string folderOf(int32_t process) { return "/proc/" + std::to_string(process); }

bool isKnown(const ForeignProcess& process) {
  struct stat space, folder;
  return process.number > 1 && ::stat("/proc/self/ns/pid", &space) == 0 && space.st_ino == process.space &&
         ::stat(folderOf(process.number).c_str(), &folder) == 0 && folder.st_uid == ::geteuid();
}

/// What is told may let go of this.
struct Watcher {
  Watcher(int process, std::function<void()> ended)
      : handle(static_cast<int>(::syscall(SYS_pidfd_open, process, 0))), onEnd(std::move(ended)) {
    if (handle < 0) return;
    notifier = new QSocketNotifier(handle, QSocketNotifier::Read);
    QObject::connect(notifier, &QSocketNotifier::activated, [this] {
      notifier->setEnabled(false);
      const auto tell = onEnd;
      tell();
    });
  }
  ~Watcher() {
    if (!notifier) return;
    notifier->setEnabled(false);
    notifier->deleteLater();
  }
  Watcher(const Watcher&) = delete;

  Descriptor handle;
  std::function<void()> onEnd;
  QSocketNotifier* notifier = nullptr;
};

std::string beginning(const std::string& path, size_t length) {
  std::ifstream file(path, std::ios::binary);
  std::string text(length, '\0');
  file.read(text.data(), static_cast<std::streamsize>(text.size()));
  text.resize(static_cast<size_t>(file.gcount()));
  return text;
}

std::string argumentsOf(int32_t process) {
  std::string text = beginning(folderOf(process) + "/cmdline", longestArguments);
  std::ranges::replace_if(
      text, [](char c) { return c == '\0' || c == '\n'; }, ' ');
  return text;
}

}  // namespace

Subscription ProcProcesses::watch(const ForeignProcess& process, std::function<void()> ended) {
  auto watcher = std::make_shared<Watcher>(process.number, std::move(ended));
  // Asked afterwards: the number cannot be given to another process while there is a handle.
  return isKnown(process) ? Subscription(std::move(watcher)) : Subscription();
}

std::vector<ForeignProcesses::Child> ProcProcesses::children(const ForeignProcess& process) {
  std::vector<Child> children;
  if (!isKnown(process)) return children;
  std::error_code error;
  for (const auto& thread : std::filesystem::directory_iterator(folderOf(process.number) + "/task", error)) {
    std::ifstream numbers(thread.path() / "children");
    for (int32_t number; numbers >> number;) children.push_back({number, argumentsOf(number)});
  }
  return children;
}

std::vector<int32_t> ProcProcesses::ancestors(const ForeignProcess& process) {
  std::vector<int32_t> ancestors;
  if (!isKnown(process)) return ancestors;
  for (int32_t next = process.number; next > 1 && ancestors.size() < mostAncestors;) {
    ancestors.push_back(next);
    const auto status = ProcessStatus::of(next);
    next = status ? status->parent : 0;
  }
  return ancestors;
}

std::string ProcProcesses::variable(const ForeignProcess& process, const std::string& name) {
  if (!isKnown(process)) return "";
  const std::string environment = '\0' + beginning(folderOf(process.number) + "/environ", longestEnvironment);
  const std::string start = '\0' + name + '=';
  const size_t found = environment.find(start);
  return found == environment.npos ? "" : environment.c_str() + found + start.size();
}

bool ProcProcesses::isOwnSocket(const FilePath& path) {
  struct stat socket;
  return path.starts_with('/') && ::stat(path.c_str(), &socket) == 0 && S_ISSOCK(socket.st_mode) &&
         socket.st_uid == ::geteuid();
}

}  // namespace tarnwick
