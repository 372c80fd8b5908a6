#include "services/NotesStore.h"

#include <filesystem>
#include <mutex>
#include <utility>

#include "base/AtomicFile.h"
#include "base/Utf8.h"

namespace tarnwick {
namespace {

constexpr double saveDelay = 0.4;
/// After a write that failed.
constexpr double retryDelay = 10;

/// Gives the file a name of its own beside the notes: "notes.unreadable.txt", or with a number when that is
/// taken. @return whether it is out of the way
bool setAside(const std::string& file) {
  const std::string stem = file.substr(0, file.rfind(".txt")) + ".unreadable";
  std::error_code error;
  std::string name = stem + ".txt";
  for (int number = 2; std::filesystem::exists(std::filesystem::symlink_status(name, error)); ++number) {
    name = stem + "-" + std::to_string(number) + ".txt";
  }
  std::filesystem::rename(file, name, error);
  return !error;
}

}  // namespace

/// Written by several threads: by whoever comes with the newest version.
class NotesStore::File {
 public:
  explicit File(const Folders& folders) : folder_(folders.data() + "/Tarnwick") {}

  std::string read() {
    // Nothing else may have made it yet.
    makePrivateFolder(folder_);
    std::string text;
    const std::error_code error = readFile(path_, text);
    const bool isThere = error != std::errc::no_such_file_or_directory && error != std::errc::not_a_directory;
    isForeign_ = error ? isThere : !isValidUtf8(text);
    return error || isForeign_ ? "" : text;
  }

  /// @return whether there is nothing left to write of that version
  bool write(uint64_t version, const std::string& text) {
    const std::lock_guard lock(mutex_);
    if (version <= written_ || version < tried_) return true;
    tried_ = version;
    if (isForeign_) {
      // The user sees an empty pad where there was something. Only once new notes are written does the old
      // file make room for them, and it is kept.
      if (text.empty()) return true;
      if (!setAside(path_)) return false;
      isForeign_ = false;
    }
    if (writePrivateFile(path_, text)) return false;
    written_ = version;
    return true;
  }

 private:
  const std::string folder_;
  const std::string path_ = folder_ + "/notes.txt";
  std::mutex mutex_;
  uint64_t tried_ = 0, written_ = 0;
  /// It holds something that is not ours to replace: it could not be read, or is no text.
  bool isForeign_ = false;
};

NotesStore::NotesStore(Scheduler& scheduler, const Folders& folders)
    : scheduler_(scheduler), file_(std::make_shared<File>(folders)) {
  text_ = file_->read();
}

NotesStore::~NotesStore() { flush(); }

void NotesStore::setText(SharedText text) {
  // Before the assignment: what an observer makes of it has a save of its own.
  if (!saved_) saveAfter(saveDelay, ++version_, text);
  text_ = std::move(text);
}

void NotesStore::saveAfter(double seconds, uint64_t version, const SharedText& text) {
  pause_ = scheduler_.after(seconds, [=, this] {
    const auto isSaved = std::make_shared<bool>(false);
    writing_ = scheduler_.background([=, file = file_] { *isSaved = file->write(version, text); },
        [=, this] {
          if (!*isSaved && version == version_) saveAfter(retryDelay, version, text);
        });
  });
}

void NotesStore::flush() {
  pause_.cancel();
  file_->write(version_, saved_ ? *saved_ : text_.get());
}

void NotesStore::showcaseBegin() {
  if (!saved_) {
    saved_ = text_.get();
    pause_.cancel();
    if (!file_->write(version_, *saved_)) saveAfter(retryDelay, version_, *saved_);
  }
  text_ = {};
}

void NotesStore::showcaseEnd() {
  if (saved_) text_ = *std::exchange(saved_, std::nullopt);
}

}  // namespace tarnwick
