#pragma once
#include <optional>
#include <string>

#include "base/ObservableObject.h"
#include "base/Scheduler.h"
#include "platform/Folders.h"

namespace tarnwick {

/// The text of the scratch pad, kept in the file notes.txt. It is written, off the main thread, once nothing
/// was typed for 0.4 seconds.
class NotesStore : public ObservableObject {
 public:
  /// Reads the file; without one the text is empty. Both arguments must outlive the store.
  NotesStore(Scheduler& scheduler, const Folders& folders);

  const std::string& text() const { return text_; }
  /// Observers are told when it differs; it is saved in any case. UTF-8.
  void setText(std::string text);

 private:
  void scheduleSave();
  void write(std::string text);

  Scheduler& scheduler_;
  const Folders& folders_;
  std::string text_;
  /// The file holds something that is not ours to replace: it could not be read, or is no text.
  bool foreignFile_ = false;
  Task saveTask_;
  Task writeTask_;
  bool writing_ = false;
  /// What fell due while an earlier write was still under way.
  std::optional<std::string> nextWrite_;
};

}  // namespace tarnwick
