#include "services/NotesStore.h"

#include <filesystem>

#include "base/AtomicFile.h"
#include "base/Utf8.h"

namespace tarnwick {
namespace {

constexpr double saveDelay = 0.4;

/// Where the notes belong. Makes the folder, as nothing else may have yet.
std::string notesFile(const Folders& folders) {
  const std::string folder = folders.data() + "/Tarnwick";
  std::error_code ignored;
  std::filesystem::create_directories(folder, ignored);
  return folder + "/notes.txt";
}

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

NotesStore::NotesStore(Scheduler& scheduler, const Folders& folders)
    : scheduler_(scheduler), folders_(folders) {
  const std::error_code error = readFile(notesFile(folders_), text_);
  foreignFile_ = error ? error != std::errc::no_such_file_or_directory : !isValidUtf8(text_);
  if (error || foreignFile_) text_.clear();
}

void NotesStore::setText(std::string text) {
  const bool differs = text != text_;
  text_ = std::move(text);
  if (differs) notifyObservers();
  scheduleSave();
}

void NotesStore::scheduleSave() {
  // Captured now: what an observer or a later assignment makes of it has a save of its own.
  saveTask_ = scheduler_.after(saveDelay, [this, text = text_]() mutable { write(std::move(text)); });
}

void NotesStore::write(std::string text) {
  // Background work may overtake other background work, so there is only one write at a time.
  if (writing_) {
    nextWrite_ = std::move(text);
    return;
  }
  const std::string file = notesFile(folders_);
  if (foreignFile_) {
    // The user sees an empty pad where there was something. Only once new notes are written does the old file
    // make room for them, and it is kept.
    if (text.empty() || !setAside(file)) return;
    foreignFile_ = false;
  }
  writing_ = true;
  writeTask_ = scheduler_.background([file, text = std::move(text)] { writeFileAtomically(file, text); },
                                     [this] {
                                       writing_ = false;
                                       if (auto next = std::exchange(nextWrite_, std::nullopt))
                                         write(std::move(*next));
                                     });
}

}  // namespace tarnwick
