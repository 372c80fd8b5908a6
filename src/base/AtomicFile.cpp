#include "base/AtomicFile.h"

#include <fcntl.h>
#include <limits.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>

#include "base/Descriptor.h"

namespace tarnwick {
namespace {

constexpr mode_t privateFileMode = 0600, privateFolderMode = 0700;

struct Attributes {
  mode_t mode;
  uid_t owner = static_cast<uid_t>(-1);
  gid_t group = static_cast<gid_t>(-1);
};

std::error_code lastError() { return {errno, std::generic_category()}; }
std::error_code notAFile(const struct stat& status) {
  return std::make_error_code(
      S_ISDIR(status.st_mode) ? std::errc::is_a_directory : std::errc::operation_not_supported);
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

/// Opens the file that shall take the place of `target`. It has one name, so that what a killed writer has
/// left is used by the next one; a lock keeps two apart.
Descriptor openDraft(const std::string& path) {
  for (int tries = 0; tries < 1000; ++tries) {
    Descriptor draft(
        ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, privateFileMode));
    if (draft < 0) return draft;
    const bool isLocked = ::flock(draft, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK;
    struct stat opened, named;
    const bool isThere =
        ::fstat(draft, &opened) == 0 && ::lstat(path.c_str(), &named) == 0 && opened.st_dev == named.st_dev &&
        opened.st_ino == named.st_ino;
    if (isLocked && isThere) return draft;
    // It is being written, or was renamed meanwhile.
    ::poll(nullptr, 0, isLocked ? 0 : 1);
  }
  errno = EWOULDBLOCK;
  return Descriptor();
}

/// @param target where no link leads elsewhere
std::error_code replace(const std::string& target, std::string_view contents, Attributes attributes) {
  const std::string path = target + ".new-tarnwick";
  const Descriptor draft = openDraft(path);
  if (draft < 0) return lastError();
  // The owner only matters (and can only be changed) for root; a refusal leaves a file of our own.
  [[maybe_unused]] const int refused = ::fchown(draft, attributes.owner, attributes.group);
  if (::ftruncate(draft, 0) != 0 || ::fchmod(draft, attributes.mode) != 0 || !writeAll(draft, contents) ||
      ::fsync(draft) != 0 || ::rename(path.c_str(), target.c_str()) != 0) {
    const std::error_code error = lastError();
    ::unlink(path.c_str());
    return error;
  }
  syncFolder(target);
  return {};
}

/// Where `path` leads to.
/// @param newMode of a file that is not there yet
/// @param keptMode what an existing one keeps of its own
std::error_code replaceThroughLinks(
    const std::string& path, std::string_view contents, mode_t newMode, mode_t keptMode) {
  const std::string target = resolved(path);
  if (target.empty()) return std::make_error_code(std::errc::too_many_symbolic_link_levels);
  struct stat existing;
  if (::stat(target.c_str(), &existing) != 0) return replace(target, contents, {newMode});
  if (!S_ISREG(existing.st_mode)) return notAFile(existing);
  return replace(target, contents, {existing.st_mode & keptMode, existing.st_uid, existing.st_gid});
}

}  // namespace

std::error_code writeFileAtomically(const std::string& path, std::string_view contents, unsigned mode) {
  const mode_t mask = ::umask(0);
  ::umask(mask);
  return replaceThroughLinks(path, contents, mode & ~mask, 07777);
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
  return replaceThroughLinks(path, contents, privateFileMode, privateFileMode);
}

std::error_code writeBackup(const std::string& path, std::string_view contents, const std::string& original) {
  struct stat status;
  if (::stat(original.c_str(), &status) != 0) return lastError();
  return replace(path, contents, {status.st_mode & 0777, status.st_uid, status.st_gid});
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
