#include "bridge/CoverProcess.h"

#include <dlfcn.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <utility>

#include "base/AddressSpace.h"

namespace tarnwick {
namespace {

/// The program limits itself to less.
constexpr int64_t longestRun = 25'000'000;
/// Whoever is not gone after that hangs in a file that does not answer, and cannot be waited for.
constexpr int64_t longestEnd = 1'000'000;
/// So many may hang.
constexpr int mostChildren = 4;
constexpr off_t largestPicture = 1 << 20;

int children = 0;

/// Beside this library, in the tree of the installed files.
std::string programPath() {
  static const char here = 0;
  Dl_info library = {};
  if (!::dladdr(&here, &library)) return "";
  return std::filesystem::path(library.dli_fname).parent_path() / "../../libexec/Tarnwick/load-cover";
}

/// A file in memory.
class MemoryFile {
 public:
  MemoryFile() : file_(::memfd_create("cover", MFD_CLOEXEC)) {}
  MemoryFile(const MemoryFile&) = delete;
  ~MemoryFile() { ::close(file_); }
  operator int() const { return file_; }

  bool set(const std::string& bytes) const {
    return ::pwrite(file_, bytes.data(), bytes.size(), 0) == static_cast<ssize_t>(bytes.size());
  }
  std::string contents() const {
    struct stat status = {};
    if (::fstat(file_, &status) != 0 || status.st_size > largestPicture) return "";
    std::string bytes(static_cast<size_t>(status.st_size), '\0');
    return ::pread(file_, bytes.data(), bytes.size(), 0) == status.st_size ? bytes : "";
  }

 private:
  const int file_;
};

}  // namespace

/// Lives until the process has ended, which may be long after anybody waited for it.
struct CoverProcess::Child {
  CoverProcess* owner;
  GPid process = 0;
  MemoryFile address, picture;

  explicit Child(CoverProcess* waiting) : owner(waiting) { ++children; }
  ~Child() { --children; }
};

CoverProcess::CoverProcess(const std::string& address, bool mayUseNetwork, Receiver receive)
    : receive_(std::move(receive)) {
  startChild(address, mayUseNetwork);
  patience_.start(child_ ? longestRun : 0, [this] { child_ ? end() : finish(""); });
}

CoverProcess::~CoverProcess() {
  if (!child_) return;
  child_->owner = nullptr;
  ::kill(child_->process, SIGKILL);
}

void CoverProcess::startChild(const std::string& address, bool mayUseNetwork) {
  if (children >= mostChildren) return;
  auto child = std::make_unique<Child>(this);
  if (!child->address.set(address)) return;
  std::string program = programPath(), network = "--network";
  char* arguments[] = {program.data(), mayUseNetwork ? network.data() : nullptr, nullptr};
  constexpr auto flags = static_cast<GSpawnFlags>(G_SPAWN_DO_NOT_REAP_CHILD | G_SPAWN_STDERR_TO_DEV_NULL);
  // It has limits of its own.
  const auto prepare = [](gpointer) { unlimitAddressSpace(); };
  if (!g_spawn_async_with_fds(nullptr, arguments, nullptr, flags, prepare, nullptr, &child->process,
          child->address, child->picture, -1, nullptr)) {
    return;
  }
  child_ = child.release();
  const auto ended = [](GPid, gint status, gpointer data) {
    const std::unique_ptr<Child> ending(static_cast<Child*>(data));
    if (!ending->owner) return;
    ending->owner->child_ = nullptr;
    ending->owner->finish(status == 0 ? ending->picture.contents() : "");
  };
  g_child_watch_add(child_->process, ended, child_);
}

void CoverProcess::end() {
  if (!child_) return;
  ::kill(child_->process, SIGKILL);
  patience_.start(longestEnd, [this] {
    std::exchange(child_, nullptr)->owner = nullptr;
    finish("");
  });
}

void CoverProcess::finish(std::string picture) {
  patience_.stop();
  // It may destroy this.
  const Receiver receive = std::move(receive_);
  receive(std::move(picture));
}

}  // namespace tarnwick
