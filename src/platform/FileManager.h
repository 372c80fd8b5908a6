#pragma once
#include "base/FilePath.h"

namespace tarnwick {

/// What the desktop does with files.
class FileManager {
 public:
  virtual ~FileManager() = default;

  /// Opens the file with the application that is meant for its kind.
  virtual void open(const FilePath& file) = 0;
  /// Shows the file in its folder.
  virtual void reveal(const FilePath& file) = 0;
};

}  // namespace tarnwick
