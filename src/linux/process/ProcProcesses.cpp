#include "linux/process/ProcProcesses.h"

#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <QSocketNotifier>
#include <algorithm>
#include <filesystem>
#include <fstream>

#include "base/Descriptor.h"

namespace tarnwick {
namespace {

constexpr size_t longestArguments = 8192;

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

std::string argumentsOf(int32_t process) {
  std::ifstream file(folderOf(process) + "/cmdline", std::ios::binary);
  std::string text(longestArguments, '\0');
  file.read(text.data(), static_cast<std::streamsize>(text.size()));
  text.resize(static_cast<size_t>(file.gcount()));
  std::ranges::replace_if(text, [](char c) { return c == '\0' || c == '\n'; }, ' ');
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

}  // namespace tarnwick
