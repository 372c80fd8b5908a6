#pragma once
#include <string>

namespace tarnwick {

/// A folder of its own that vanishes, with all that is in it, at the end of the test.
class TemporaryFolder {
 public:
  TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;
  ~TemporaryFolder();

  /// Absolute, without a slash at the end.
  const std::string& path() const { return path_; }
  /// Writes a file of that name into it. @return its path
  std::string write(const std::string& name, const std::string& contents) const;

 private:
  std::string path_;
};

/// What the file holds; "(no file)" when there is none.
std::string contentsOf(const std::string& path);

}  // namespace tarnwick
