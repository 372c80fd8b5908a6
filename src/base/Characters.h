#pragma once
#include <string>
#include <string_view>

namespace tarnwick {

/// The first `count` user-perceived characters of `text`, which is UTF-8. The cut also comes before more than
/// `maximumBytes` bytes are kept, since one character may carry any number of combining marks; it is never
/// inside a code point.
std::string_view firstCharacters(std::string_view text, size_t count, size_t maximumBytes);

}  // namespace tarnwick
