#pragma once
#include <map>
#include <string>

namespace tarnwick {

/// The groups of a file of keys and values (desktop entries, themes, settings), and what is in them. A file
/// that is not there has none; what is unusually large is not read.
using IniFile = std::map<std::string, std::map<std::string, std::string>>;
IniFile readIniFile(const std::string& path);

}  // namespace tarnwick
