#pragma once
#include <optional>
#include <string_view>
#include <vector>

#include "base/FilePath.h"

namespace tarnwick {

/// The path that a file: address (RFC 8089) stands for; none when it is something else, or of another
/// machine. Its bytes stay what they are, whatever their encoding.
std::optional<FilePath> fileOfUri(std::string_view uri);

/// The address of a file, escaped as GLib does: thumbnails are known by it.
std::string uriOfFile(const FilePath& file);

/// The files of this machine in a text of the type text/uri-list, in its order. All else is left
/// out.
std::vector<FilePath> filesOfUriList(std::string_view text);

}  // namespace tarnwick
