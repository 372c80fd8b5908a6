#pragma once
#include <string>
#include <vector>

namespace tarnwick {

/// A line of what a call of a tool would do.
struct CallLine {
  enum class Kind {
    plain,
    /// What it is done to, such as a file.
    object,
    /// What is said of it besides.
    remark,
    /// A line that goes, and one that comes.
    removed,
    added
  };
  Kind kind = Kind::plain;
  std::string text;

  friend bool operator==(const CallLine&, const CallLine&) = default;
};

/// What a call of `tool` would do, all of it: a command, an edit as the lines that go and come, of any other
/// tool what it would be called with. Nothing of the input is left out.
/// @param input a JSON object; anything else is shown as it is
std::vector<CallLine> callLines(const std::string& tool, const std::string& input);

}  // namespace tarnwick
