#include "base/AtomicFile.h"

#include <fcntl.h>
#include <limits.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>

namespace tarnwick {
namespace {

std::error_code lastError() { return {errno, std::generic_category()}; }

class Descriptor {
 public:
  explicit Descriptor(int value) : value_(value) {}
  ~Descriptor() {
    if (value_ >= 0) ::close(value_);
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  operator int() const { return value_; }

 private:
  int value_;
};

/// Follows symbolic links, also a dangling one, to the place where the file is or would be; empty when they run
/// in a circle.
std::string resolved(std::string path) {
  for (int depth = 0; depth < 40; ++depth) {
    char target[PATH_MAX];
    const ssize_t length = ::readlink(path.c_str(), target, sizeof target);
    if (length < 0 || length == static_cast<ssize_t>(sizeof target)) return path;
    std::string next(target, static_cast<size_t>(length));
    if (!next.starts_with('/')) next = path.substr(0, path.rfind('/') + 1) + next;
    path = std::move(next);
  }
  return {};
}

bool writeAll(int file, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = ::write(file, bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return false;
    bytes.remove_prefix(static_cast<size_t>(written));
  }
  return true;
}

void syncFolder(const std::string& path) {
  const size_t slash = path.rfind('/');
  const std::string folder = slash == std::string::npos ? "." : path.substr(0, slash + 1);
  const Descriptor descriptor(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (descriptor >= 0) ::fsync(descriptor);
}

}  // namespace

std::error_code writeFileAtomically(const std::string& path, std::string_view contents, unsigned mode) {
  const std::string target = resolved(path);
  if (target.empty()) return std::make_error_code(std::errc::too_many_symbolic_link_levels);
  std::string temporary = target + ".XXXXXX";
  const Descriptor file(::mkostemp(temporary.data(), O_CLOEXEC));
  if (file < 0) return lastError();

  struct stat existing;
  if (::stat(target.c_str(), &existing) == 0) {
    // The owner only matters (and can only be changed) for root; a refusal leaves a file of our own.
    [[maybe_unused]] const int refused = ::fchown(file, existing.st_uid, existing.st_gid);
    mode = existing.st_mode & 07777;
  } else {
    const mode_t mask = ::umask(0);
    ::umask(mask);
    mode &= ~mask;
  }
  if (::fchmod(file, mode) != 0 || !writeAll(file, contents) || ::fsync(file) != 0 ||
      ::rename(temporary.c_str(), target.c_str()) != 0) {
    const std::error_code error = lastError();
    ::unlink(temporary.c_str());
    return error;
  }
  syncFolder(target);
  return {};
}

std::error_code readFile(const std::string& path, std::string& contents) {
  const Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
  if (file < 0) return lastError();
  contents.clear();
  char buffer[65536];
  for (;;) {
    const ssize_t count = ::read(file, buffer, sizeof buffer);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return lastError();
    if (count == 0) return {};
    contents.append(buffer, static_cast<size_t>(count));
  }
}

}  // namespace tarnwick
