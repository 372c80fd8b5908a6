#pragma once
#include <string>

namespace tarnwick {

/// Where this user's files belong. Absolute paths without a slash at the end; the folders may not exist yet.
class Folders {
 public:
  virtual ~Folders() = default;
  virtual std::string home() const = 0;
  /// What the user would miss: notes.
  virtual std::string data() const = 0;
  virtual std::string configuration() const = 0;
  /// What can be made again.
  virtual std::string caches() const = 0;
  /// The modules that are installed with the program.
  virtual std::string modules() const = 0;
};

}  // namespace tarnwick
