#pragma once
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "base/Observed.h"
#include "base/Scheduler.h"
#include "base/SharedText.h"
#include "platform/Folders.h"

namespace tarnwick {

/// The text of the scratch pad, kept in the file notes.txt. It is written, off the main thread, once nothing
/// was typed for 0.4 seconds; what cannot be written (a full disk) is tried again now and then.
class NotesStore : public ObservableObject {
 public:
  /// Reads the file; without one the text is empty. `scheduler` must outlive the store.
  NotesStore(Scheduler& scheduler, const Folders& folders);
  /// Writes what is not written yet.
  ~NotesStore();

  const std::string& text() const { return text_.get(); }
  const SharedText& sharedText() const { return text_; }
  /// Observers are told when it differs; it is saved in any case. UTF-8.
  void setText(SharedText text);
  /// Writes now what would be written soon.
  void flush();

  /// An empty pad for the demonstration, until its end. Meanwhile nothing but the user's text is written.
  void showcaseBegin();
  void showcaseEnd();

 private:
  class File;

  void saveAfter(double seconds, uint64_t version, const SharedText& text);

  Scheduler& scheduler_;
  /// Shared with the work in the background.
  std::shared_ptr<File> file_;
  Observed<SharedText> text_{*this};
  /// The user's text, while a demonstration has taken its place.
  std::optional<SharedText> saved_;
  /// How often a text was assigned.
  uint64_t version_ = 0;
  Task pause_, writing_;
};

}  // namespace tarnwick
