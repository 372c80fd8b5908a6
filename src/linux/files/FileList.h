#pragma once
#include <string_view>
#include <vector>

#include "base/FilePath.h"

namespace tarnwick {

/// The files of this machine in a text of the type text/uri-list, in its order. Links to other places and
/// files of other machines are left out; a path's bytes stay what they are, whatever its encoding.
std::vector<FilePath> filesOfUriList(std::string_view text);

}  // namespace tarnwick
