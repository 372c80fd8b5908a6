#pragma once
#include <functional>
#include <string>

namespace tarnwick {

/// The program's hooks in Claude Code's settings.
class HookSetup {
 public:
  virtual ~HookSetup() = default;
  virtual bool isInstalled() const = 0;
  /// Adds or removes them without waiting for it; `then` is called on the main thread with what went wrong,
  /// or with an empty text. One at a time.
  virtual void setInstalled(bool installed, std::function<void(const std::string& problem)> then) = 0;
};

}  // namespace tarnwick
