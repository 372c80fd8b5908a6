#pragma once
#include "platform/Folders.h"

namespace tarnwick {

/// The base directories of the XDG convention, read from the environment each time.
class XdgFolders : public Folders {
 public:
  /// HOME, else the user database's entry.
  std::string home() const override;
  std::string data() const override;
  std::string configuration() const override;
  std::string caches() const override;
  /// Beside the running program.
  std::string modules() const override;
};

}  // namespace tarnwick
