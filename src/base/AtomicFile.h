#pragma once
#include <string>
#include <string_view>
#include <system_error>

namespace tarnwick {

// What is written lies beside the file for a moment, as NAME.new-tarnwick. A killed program may leave that
// behind; the next one to write the file takes it away.

/// Replaces the file at `path` by `contents`, so that a reader and a crash at any instant find either the old
/// file or the new one, whole. A symbolic link stays one: the file that it leads to is replaced. The
/// permissions of an existing file are kept; a new file gets `mode` less the umask.
/// @return the error, or a default-constructed code. What is there and no file (a folder, a pipe, a device)
/// is one.
std::error_code writeFileAtomically(const std::string& path, std::string_view contents, unsigned mode = 0666);

/// The same for what is nobody else's business: file and folder are for the user alone, also where they were
/// not before, and the folder is made when it is missing.
std::error_code writePrivateFile(const std::string& path, std::string_view contents);

/// Replaces what is at `path`, a symbolic link included, by a file of its own with the owner and the
/// permissions of `original`.
std::error_code writeBackup(const std::string& path, std::string_view contents, const std::string& original);

/// A folder for the user alone, and those above it. What cannot be made shows when something is written
/// there.
void makePrivateFolder(const std::string& path);

/// The whole file. What is no file is an error; nothing waits for a pipe. @return the error, or a
/// default-constructed code.
std::error_code readFile(const std::string& path, std::string& contents);

}  // namespace tarnwick
