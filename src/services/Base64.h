#pragma once
#include <optional>
#include <string>
#include <string_view>

namespace tarnwick {

/// The bytes that a text in base64 stands for: standard alphabet, padded, without line breaks. None when it
/// is not that.
std::optional<std::string> decodeBase64(std::string_view text);

}  // namespace tarnwick
