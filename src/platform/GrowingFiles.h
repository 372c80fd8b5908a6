#pragma once
#include <functional>
#include <string>

#include "base/FilePath.h"
#include "base/ObservableObject.h"

namespace tarnwick {

/// Files that other programs append to, such as logs, or write anew.
class GrowingFiles {
 public:
  virtual ~GrowingFiles() = default;

  /// Hands over, from the main loop, each line that is appended from now on, when it is complete; of a file
  /// that does not exist yet all of them, once it does. Of much at once only the last 256 KiB are read.
  /// Nothing comes of what is not a regular file of the user's own. Nothing waits for the file meanwhile.
  virtual Subscription follow(const FilePath& file, std::function<void(const std::string& line)> line) = 0;
  /// The same of a file that is written anew as a whole, or replaced: hands over its text, the first 64 KiB
  /// of it, as it is found and whenever it has changed.
  virtual Subscription followWhole(
      const FilePath& file, std::function<void(const std::string& text)> told) = 0;
};

}  // namespace tarnwick
