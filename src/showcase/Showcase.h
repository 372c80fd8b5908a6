#pragma once
#include <string>
#include <vector>

#include "base/FilePath.h"
#include "base/Scheduler.h"
#include "core/NotchModel.h"
#include "platform/Folders.h"

namespace tarnwick {

/// The demonstration mode: stages scenes on the live notch on command. From "begin" to "end" the services
/// show sample content, and nothing of the user's is written; then all is as it is by then. Commands may come
/// from anybody: whatever they say, it is bounded and does no harm.
class Showcase {
 public:
  /// All arguments must outlive it.
  Showcase(NotchModel& model, Scheduler& scheduler, const Folders& folders)
      : model_(model), scheduler_(scheduler), folders_(folders) {}

  /// Executes one command. One that is not known, or whose argument names nothing, is ignored, as is any
  /// before "begin".
  void handle(const std::string& command, const std::string& argument);
  /// A file of that name to show off, which is made when it is not there: a picture when the name ends in
  /// ".png", else a line of text. Of a path the last component counts.
  FilePath demoFile(const std::string& name) const;
  /// Types the text into the notes, character by character.
  void type(const std::string& text);

 private:
  void begin(const std::string& language);
  void end();
  void clearStage();
  void fill();
  void drag(const std::string& argument);
  void addToTray(const std::string& name);
  void selectOutput(const std::string& index);

  NotchModel& model_;
  Scheduler& scheduler_;
  const Folders& folders_;
  /// What is still to be typed.
  std::string untyped_;
  Task typing_;
};

}  // namespace tarnwick
