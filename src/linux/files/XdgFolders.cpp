#include "linux/files/XdgFolders.h"

#include <pwd.h>
#include <unistd.h>

#include <cstdlib>

#include "linux/process/Module.h"

namespace tarnwick {
namespace {

std::string withoutTrailingSlash(std::string path) {
  while (path.size() > 1 && path.ends_with('/')) path.pop_back();
  return path;
}

/// The convention has relative paths in these variables ignored.
std::string folder(const char* variable, const std::string& fallback) {
  const char* value = std::getenv(variable);
  return value && *value == '/' ? withoutTrailingSlash(value) : fallback;
}

}  // namespace

std::string XdgFolders::home() const {
  const char* variable = std::getenv("HOME");
  if (variable && *variable == '/') return withoutTrailingSlash(variable);
  const passwd* user = ::getpwuid(::getuid());
  return user && user->pw_dir ? withoutTrailingSlash(user->pw_dir) : "/";
}

std::string XdgFolders::data() const { return folder("XDG_DATA_HOME", home() + "/.local/share"); }
std::string XdgFolders::configuration() const { return folder("XDG_CONFIG_HOME", home() + "/.config"); }
std::string XdgFolders::caches() const { return folder("XDG_CACHE_HOME", home() + "/.cache"); }
std::string XdgFolders::modules() const { return moduleFolder(); }

}  // namespace tarnwick
