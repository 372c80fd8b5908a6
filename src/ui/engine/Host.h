#pragma once
#include <functional>
#include <memory>
#include <vector>

#include "base/FilePath.h"
#include "ui/Interaction.h"
#include "ui/engine/HostedText.h"

namespace tarnwick::ui {

class Node;

/// What a window does for the scene on it. Off screen there is none, and all of this is left undone.
class Host {
 public:
  virtual ~Host() = default;

  virtual void setCursor(Cursor cursor) = 0;
  /// Asks for the keyboard, which views that are clicked do not get by themselves, and gives it back to
  /// whoever had it before.
  virtual void takeKeyboard() = 0;
  virtual void giveBackKeyboard() = 0;
  /// Drags files out of the window, with the view that stands for them as the picture. Returns when they have
  /// been dropped, or not; meanwhile the scene goes on.
  virtual void dragFiles(const std::vector<FilePath>& files, Node& source) = 0;
  /// An editor of the toolkit, which is not to be seen yet.
  virtual std::unique_ptr<HostedText> makeText() = 0;
};

}  // namespace tarnwick::ui
