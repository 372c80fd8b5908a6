#pragma once
#include <string>

#include "showcase/memory/MemoryPorts.h"
#include "support/TemporaryFolder.h"

namespace tarnwick {

/// Folders under a temporary one; they exist.
class MemoryFolders : public Folders {
 public:
  MemoryFolders();
  std::string home() const override { return root.path(); }
  std::string data() const override { return root.path() + "/data"; }
  std::string configuration() const override { return root.path() + "/configuration"; }
  std::string caches() const override { return root.path() + "/caches"; }
  std::string modules() const override { return root.path() + "/modules"; }

  TemporaryFolder root;
};

/// Made before the ports, which refer to them.
struct OwnFolders {
  MemoryFolders folders;
};

/// A whole desktop in memory, with a clock that stands still until a test moves it, and folders that vanish.
struct MemoryDesktop : OwnFolders, MemoryPorts {
  MemoryDesktop() : MemoryPorts(OwnFolders::folders) {}
};

}  // namespace tarnwick
