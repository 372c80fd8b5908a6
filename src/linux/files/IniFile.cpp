#include "linux/files/IniFile.h"

#include <filesystem>
#include <fstream>

namespace tarnwick {
namespace {

constexpr size_t longestFile = 4 << 20;

std::string trimmed(const std::string& text) {
  const size_t first = text.find_first_not_of(" \t\r"), last = text.find_last_not_of(" \t\r");
  return first == std::string::npos ? "" : text.substr(first, last - first + 1);
}

}  // namespace

IniFile readIniFile(const std::string& path) {
  IniFile groups;
  std::error_code error;
  if (std::filesystem::file_size(path, error) > longestFile || error) return groups;
  std::ifstream file(path);
  std::string group;
  for (std::string line; std::getline(file, line);) {
    line = trimmed(line);
    const size_t equals = line.find('=');
    if (line.starts_with('#')) continue;
    if (line.starts_with('[')) {
      group = line.substr(1, line.find(']') - 1);
    } else if (equals != std::string::npos) {
      groups[group].emplace(trimmed(line.substr(0, equals)), trimmed(line.substr(equals + 1)));
    }
  }
  return groups;
}

}  // namespace tarnwick
