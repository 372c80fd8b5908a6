#pragma once
#include <sys/types.h>

#include <string>
#include <string_view>

namespace tarnwick {

/// The user's home folder without a slash at its end: $HOME where that is an absolute path, else what
/// /etc/passwd says, else the root folder.
std::string homeFolder();

/// The home folder of a user in a text of the form of /etc/passwd; empty when it names none.
std::string homeFolderIn(std::string_view passwd, uid_t user);

}  // namespace tarnwick
