#pragma once
#include <cstdint>
#include <optional>
#include <string>

#include "base/FilePath.h"
#include "base/Image.h"

namespace tarnwick {

/// A program as its user knows it.
struct Application {
  /// What opens it; none when it cannot be opened by its name.
  std::optional<FilePath> bundle;
  std::optional<Image> icon;

  friend bool operator==(const Application&, const Application&) = default;
};

/// The programs of this desktop.
class Applications {
 public:
  virtual ~Applications() = default;

  /// The application that a running process belongs to; none when there is no such process. `name` is what
  /// the process calls its application, where it says so; a process in a sandbox is known by that alone.
  /// Takes its time; for any thread, one at a time.
  virtual std::optional<Application> runningApplication(int32_t process, const std::string& name) = 0;
  /// Brings the application forward; starts it when it does not run.
  virtual void open(const FilePath& bundle) = 0;
};

}  // namespace tarnwick
