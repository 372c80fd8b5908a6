#include "cli/HomeFolder.h"

#include <unistd.h>

#include <array>
#include <cstdlib>

#include "base/AtomicFile.h"

namespace tarnwick {

std::string homeFolder() {
  std::string folder;
  if (const char* home = std::getenv("HOME"); home && *home == '/') folder = home;
  if (folder.empty()) {
    // Not through the C library's user database: its modules cannot be loaded into a static program.
    std::string passwd;
    if (!readFile("/etc/passwd", passwd)) folder = homeFolderIn(passwd, ::getuid());
  }
  while (folder.ends_with('/')) folder.pop_back();
  return folder;
}

std::string homeFolderIn(std::string_view passwd, uid_t user) {
  const std::string wanted = std::to_string(user);
  while (!passwd.empty()) {
    std::string_view line = passwd.substr(0, passwd.find('\n'));
    passwd.remove_prefix(std::min(passwd.size(), line.size() + 1));
    // name:password:user:group:description:home:shell
    std::array<std::string_view, 7> fields;
    for (std::string_view& field : fields) {
      field = line.substr(0, line.find(':'));
      line.remove_prefix(std::min(line.size(), field.size() + 1));
    }
    if (fields[2] == wanted) return std::string(fields[5]);
  }
  return {};
}

}  // namespace tarnwick
