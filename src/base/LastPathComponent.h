#pragma once
#include <string>
#include <string_view>

namespace tarnwick {

/// The name at the end of a file path. Slashes at the end do not count; the root folder's name is "/", that
/// of an empty path is empty.
inline std::string lastPathComponent(std::string_view path) {
  const size_t end = path.find_last_not_of('/');
  if (end == std::string_view::npos) return path.empty() ? "" : "/";
  path = path.substr(0, end + 1);
  return std::string(path.substr(path.rfind('/') + 1));
}

}  // namespace tarnwick
