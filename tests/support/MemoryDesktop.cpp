#include "support/MemoryDesktop.h"

#include <filesystem>

namespace tarnwick {

MemoryFolders::MemoryFolders() {
  for (const std::string& folder : {data(), configuration(), caches()}) {
    std::filesystem::create_directories(folder);
  }
}

}  // namespace tarnwick
