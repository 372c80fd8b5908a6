#pragma once
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarnwick {

/// A key and its value as JSON texts, exactly as they were written.
struct JsonMember {
  std::string key;
  std::string value;
};

/// Cuts a JSON object into its members. Nothing is decoded: numbers too large for any type and escapes of
/// half a character come out as they went in. @return nothing unless `json` is one well-formed object in
/// UTF-8.
std::optional<std::vector<JsonMember>> membersOfObject(std::string_view json);

/// A text as a JSON string. Bytes that are not UTF-8, as file names may have, become escapes of the halves
/// U+DC80 to U+DCFF of a character.
std::string jsonString(std::string_view text);

/// The strings of a JSON array as `jsonString` wrote them. @return nothing unless it is an array of strings.
std::optional<std::vector<std::string>> stringsOfArray(std::string_view json);

}  // namespace tarnwick
