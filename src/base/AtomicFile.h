#pragma once
#include <string>
#include <string_view>
#include <system_error>

namespace tarnwick {

/// Replaces the file at `path` by `contents`, so that a reader and a crash at any instant find either the old
/// file or the new one, whole. A symbolic link stays one: the file that it leads to is replaced. The
/// permissions of an existing file are kept; a new file gets `mode` less the umask.
/// @return the error, or a default-constructed code.
std::error_code writeFileAtomically(const std::string& path, std::string_view contents, unsigned mode = 0666);

/// The whole file. @return the error, or a default-constructed code.
std::error_code readFile(const std::string& path, std::string& contents);

}  // namespace tarnwick
