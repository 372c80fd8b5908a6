#include "base/AtomicFile.h"

#include <fcntl.h>
#include <limits.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>

#include "base/Descriptor.h"

namespace tarnwick {
namespace {

constexpr mode_t privateFileMode = 0600, privateFolderMode = 0700;

std::error_code lastError() { return {errno, std::generic_category()}; }
std::error_code notAFile(const struct stat& status) {
  return std::make_error_code(S_ISDIR(status.st_mode) ? std::errc::is_a_directory
                                                      : std::errc::operation_not_supported);
}

/// Follows symbolic links, also a dangling one, to the place where the file is or would be; empty when they
/// run in a circle.
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

/// @param newMode of a file that is not there yet
/// @param keptMode what an existing one keeps of its own
std::error_code replaceFile(const std::string& path, std::string_view contents, mode_t newMode,
                            mode_t keptMode) {
  const std::string target = resolved(path);
  if (target.empty()) return std::make_error_code(std::errc::too_many_symbolic_link_levels);
  struct stat existing;
  const bool exists = ::stat(target.c_str(), &existing) == 0;
  if (exists && !S_ISREG(existing.st_mode)) return notAFile(existing);
  std::string temporary = target + ".XXXXXX";
  const Descriptor file(::mkostemp(temporary.data(), O_CLOEXEC));
  if (file < 0) return lastError();

  // The owner only matters (and can only be changed) for root; a refusal leaves a file of our own.
  [[maybe_unused]] const int refused = exists ? ::fchown(file, existing.st_uid, existing.st_gid) : 0;
  if (::fchmod(file, exists ? existing.st_mode & keptMode : newMode) != 0 || !writeAll(file, contents) ||
      ::fsync(file) != 0 || ::rename(temporary.c_str(), target.c_str()) != 0) {
    const std::error_code error = lastError();
    ::unlink(temporary.c_str());
    return error;
  }
  syncFolder(target);
  return {};
}

}  // namespace

std::error_code writeFileAtomically(const std::string& path, std::string_view contents, unsigned mode) {
  const mode_t mask = ::umask(0);
  ::umask(mask);
  return replaceFile(path, contents, mode & ~mask, 07777);
}

void makePrivateFolder(const std::string& path) {
  for (size_t end = path.find('/', 1); end != path.npos; end = path.find('/', end + 1)) {
    ::mkdir(path.substr(0, end).c_str(), privateFolderMode);
  }
  ::mkdir(path.c_str(), privateFolderMode);
  ::chmod(path.c_str(), privateFolderMode);
}

std::error_code writePrivateFile(const std::string& path, std::string_view contents) {
  makePrivateFolder(path.substr(0, path.rfind('/')));
  return replaceFile(path, contents, privateFileMode, privateFileMode);
}

std::error_code readFile(const std::string& path, std::string& contents) {
  // Opened so, a pipe that nobody writes to does not keep us waiting.
  const Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
  if (file < 0) return lastError();
  struct stat status;
  if (::fstat(file, &status) != 0) return lastError();
  if (!S_ISREG(status.st_mode)) return notAFile(status);
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
