#pragma once
#include <cstdint>
#include <optional>

#include "base/FilePath.h"
#include "base/Image.h"

namespace tarnwick {

/// How the desktop shows files.
class FileIcons {
 public:
  virtual ~FileIcons() = default;

  /// Another number whenever the file may have another icon; none when there is no such file. Waits as long
  /// as its folder does; for any thread.
  virtual std::optional<uint64_t> version(const FilePath& file) = 0;
  /// The picture that the desktop has made of what is in the file, else the icon of its kind; none where
  /// there is neither. Takes its time; for any thread.
  virtual std::optional<Image> icon(const FilePath& file) = 0;
  /// Looks anew at what the desktop is set to.
  virtual void refresh() = 0;
};

}  // namespace tarnwick
