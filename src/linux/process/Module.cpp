#include "linux/process/Module.h"

#include <dlfcn.h>

#include <filesystem>

namespace tarnwick {

std::string commandPath() {
  std::error_code error;
  const auto program = std::filesystem::read_symlink("/proc/self/exe", error);
  return (program.parent_path() / "../../bin/Tarnwick").lexically_normal();
}

std::string moduleFolder() {
  std::error_code error;
  const auto program = std::filesystem::read_symlink("/proc/self/exe", error);
  return (program.parent_path() / "../../lib/Tarnwick").lexically_normal();
}

void* moduleFunction(const std::string& modulePath, const char* name) {
  void* module = ::dlopen(modulePath.c_str(), RTLD_NOW | RTLD_LOCAL);
  return module ? ::dlsym(module, name) : nullptr;
}

}  // namespace tarnwick
