#include "support/TemporaryFolder.h"

#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace tarnwick {

TemporaryFolder::TemporaryFolder() : path_(std::filesystem::temp_directory_path() / "tarnwick-test.XXXXXX") {
  if (!::mkdtemp(path_.data())) throw std::runtime_error("no temporary folder");
}

TemporaryFolder::~TemporaryFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

std::string TemporaryFolder::write(const std::string& name, const std::string& contents) const {
  const std::string path = path_ + "/" + name;
  std::filesystem::create_directories(std::filesystem::path(path).parent_path());
  std::ofstream(path, std::ios::binary) << contents;
  return path;
}

std::string contentsOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) return "(no file)";
  std::stringstream contents;
  contents << file.rdbuf();
  return contents.str();
}

}  // namespace tarnwick
