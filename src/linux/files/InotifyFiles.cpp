#include "linux/files/InotifyFiles.h"

#include <fcntl.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

namespace tarnwick {
namespace {

/// Seconds in which changes are gathered.
constexpr double pause = 0.1;
constexpr double firstRetry = 0.25, lastRetry = 300;
constexpr size_t mostAtOnce = 256 << 10, longestWhole = 64 << 10;

off_t lengthOf(int file) {
  struct stat status;
  return ::fstat(file, &status) == 0 ? status.st_size : 0;
}

/// A regular file of the user's own; nothing waits for one that is something else. When there is none,
/// `errno` tells why, 0 when it is something else.
Descriptor openOwn(const FilePath& path) {
  Descriptor file(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
  if (file < 0) return file;
  struct stat status;
  const bool isOwn = ::fstat(file, &status) == 0 && S_ISREG(status.st_mode) && status.st_uid == ::geteuid();
  errno = 0;
  return isOwn ? std::move(file) : Descriptor();
}

}  // namespace

/// One file. What is used off the main thread is shared with the work there, which may outlive this.
class InotifyFiles::Followed : public std::enable_shared_from_this<Followed> {
 public:
  /// @param opened the file was opened, for the first time or, when it is told `whole`, again
  Followed(Scheduler& scheduler, const FilePath& path, std::function<void(const std::string&)> told,
      bool whole, std::function<void()> opened)
      : scheduler_(scheduler),
        path_(path),
        told_(std::move(told)),
        isWhole_(whole),
        opened_(std::move(opened)) {}

  /// A file that does not exist yet is tried again after `retry` seconds, then less and less often.
  void open(double retry = firstRetry) {
    work_ = scheduler_.background(
        [state = state_, path = path_] {
          state->file = openOwn(path);
          if (state->file < 0) {
            state->isNew = errno == ENOENT;
          } else if (!state->isNew) {
            state->position = lengthOf(state->file);
          }
        },
        [this, retry] {
          if (state_->file >= 0) {
            opened_();
          } else if (state_->isNew && retry < lastRetry) {
            work_ = scheduler_.after(retry, [=, this] { open(retry * 2); });
          }
        });
  }
  int file() const { return state_->file; }
  /// Of a file that may be replaced also what happens to its name.
  uint32_t notices() const { return isWhole_ ? IN_MODIFY | IN_ATTRIB : IN_MODIFY; }

  void changed() {
    if (isReading_) {
      hasChanged_ = true;
      return;
    }
    isReading_ = true;
    work_ = scheduler_.after(pause, [this] {
      if (isWhole_) {
        work_ = scheduler_.background(
            [state = state_, path = path_] { state->readWhole(path); }, [this] { handOverWhole(); });
      } else {
        work_ = scheduler_.background([state = state_] { state->read(); }, [this] { handOver(); });
      }
    });
  }

 private:
  struct State {
    Descriptor file;
    /// It did not exist when it was asked for: all that is in it comes.
    bool isNew = false;
    off_t position = 0;
    /// What was read; of the last line perhaps not all yet.
    std::string text;

    void read() {
      const off_t length = lengthOf(file);
      const auto most = static_cast<off_t>(mostAtOnce);
      // Of one that was cut, what is new cannot be told from what is old.
      const bool wasCut = length < position;
      if (wasCut) position = length;
      if (wasCut || length - position > most || text.size() > mostAtOnce) {
        text.clear();
        position = std::max(position, length - most);
      }
      const size_t old = text.size();
      text.resize(old + static_cast<size_t>(length - position));
      const ssize_t count = ::pread(file, text.data() + old, text.size() - old, position);
      text.resize(old + static_cast<size_t>(std::max<ssize_t>(count, 0)));
      position += std::max<ssize_t>(count, 0);
    }

    void readWhole(const FilePath& path) {
      file = openOwn(path);
      text.resize(longestWhole);
      text.resize(static_cast<size_t>(std::max<ssize_t>(::pread(file, text.data(), text.size(), 0), 0)));
    }
  };

  void handOverWhole() {
    const auto self = shared_from_this();
    isReading_ = false;
    if (state_->file >= 0) opened_();
    if (std::exchange(hasChanged_, false)) changed();
    const auto told = told_;
    told(state_->text);
  }

  void handOver() {
    const auto self = shared_from_this();
    const size_t end = state_->text.rfind('\n') + 1;
    const std::string lines = state_->text.substr(0, end);
    state_->text.erase(0, end);
    isReading_ = false;
    if (std::exchange(hasChanged_, false)) changed();
    for (size_t begin = 0; begin < lines.size() && self.use_count() > 1;) {
      const size_t length = lines.find('\n', begin) - begin;
      told_(lines.substr(begin, length));
      begin += length + 1;
    }
  }

  Scheduler& scheduler_;
  const FilePath path_;
  const std::function<void(const std::string&)> told_;
  const bool isWhole_;
  const std::function<void()> opened_;
  const std::shared_ptr<State> state_ = std::make_shared<State>();
  bool isReading_ = false, hasChanged_ = false;
  Task work_;
};

Subscription InotifyFiles::follow(const FilePath& file, std::function<void(const std::string& line)> line) {
  return follow(file, std::move(line), false);
}

Subscription InotifyFiles::followWhole(
    const FilePath& file, std::function<void(const std::string& text)> told) {
  return follow(file, std::move(told), true);
}

Subscription InotifyFiles::follow(
    const FilePath& file, std::function<void(const std::string&)> told, bool whole) {
  const auto made = std::make_shared<std::weak_ptr<Followed>>();
  auto followed = std::make_shared<Followed>(scheduler_, file, std::move(told), whole, [this, made] {
    if (const auto opened = made->lock()) watch(opened);
  });
  *made = followed;
  followed->open();
  return Subscription(std::move(followed));
}

void InotifyFiles::watch(const std::shared_ptr<Followed>& followed) {
  if (followed->file() < 0) return;
  if (notices_ < 0) {
    notices_ = Descriptor(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC));
    if (notices_ < 0) return;
    notifier_ = std::make_unique<QSocketNotifier>(notices_, QSocketNotifier::Read);
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, [this] { takeNotices(); });
  }
  // By the open file: looking its path up again could wait for its folder.
  const std::string open = "/proc/self/fd/" + std::to_string(followed->file());
  const int number = ::inotify_add_watch(notices_, open.c_str(), followed->notices());
  if (number < 0) return;
  const auto [begin, end] = watched_.equal_range(number);
  const auto isThis = [&](const auto& entry) { return entry.second.lock() == followed; };
  if (std::any_of(begin, end, isThis)) return;
  watched_.emplace(number, followed);
  // What came while it was being opened.
  followed->changed();
}

void InotifyFiles::takeNotices() {
  alignas(inotify_event) char buffer[4096];
  for (;;) {
    const ssize_t length = ::read(notices_, buffer, sizeof buffer);
    if (length <= 0) return;
    for (const char* at = buffer; at < buffer + length;) {
      const auto* notice = reinterpret_cast<const inotify_event*>(at);
      at += sizeof(inotify_event) + notice->len;
      const auto [begin, end] = watched_.equal_range(notice->wd);
      bool isFollowed = false;
      for (auto entry = begin; entry != end;) {
        const auto followed = entry->second.lock();
        if (followed && !(notice->mask & IN_IGNORED)) followed->changed();
        isFollowed = isFollowed || followed;
        entry = followed && !(notice->mask & IN_IGNORED) ? std::next(entry) : watched_.erase(entry);
      }
      if (!isFollowed && !(notice->mask & IN_IGNORED)) ::inotify_rm_watch(notices_, notice->wd);
    }
  }
}

}  // namespace tarnwick
