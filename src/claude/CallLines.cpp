#include "claude/CallLines.h"

#include <algorithm>
#include <string_view>

#include "json/JsonValue.h"

namespace tarnwick {
namespace {

using Kind = CallLine::Kind;

/// More pairs of lines than that are not compared.
constexpr size_t mostPairs = 1 << 20;
/// Deeper than that, indentation would be most of the text.
constexpr int deepest = 16;

std::vector<std::string_view> linesOf(std::string_view text) {
  std::vector<std::string_view> lines;
  for (size_t end = text.find('\n'); end != text.npos; end = text.find('\n')) {
    lines.push_back(text.substr(0, end));
    text.remove_prefix(end + 1);
  }
  lines.push_back(text);
  return lines;
}

int depthOf(const JsonValue& value) {
  int depth = 0;
  if (const auto* array = value.as<JsonArray>()) {
    for (const JsonValue& each : *array) depth = std::max(depth, 1 + depthOf(each));
  } else if (const auto* object = value.as<JsonObject>()) {
    for (const auto& [key, each] : *object) depth = std::max(depth, 1 + depthOf(each));
  }
  return depth;
}

/// What is written down while an input is taken apart.
class Description {
 public:
  void add(Kind kind, std::string_view text) {
    for (const std::string_view line : linesOf(text)) lines_.push_back({kind, std::string(line)});
  }
  void addChange(std::string_view before, std::string_view after);
  /// What else the input says.
  void addRest(const JsonObject& rest) {
    for (const auto& [key, value] : rest) {
      std::string text = writeJson(value);
      text.pop_back();
      add(Kind::remark, key + ": " + text);
    }
  }
  std::vector<CallLine> take() { return std::move(lines_); }

 private:
  std::vector<CallLine> lines_;
};

/// The lines that go and those that come, each as late and as few as there can be, among those that stay.
void Description::addChange(std::string_view before, std::string_view after) {
  const auto goes = linesOf(before), comes = linesOf(after);
  const size_t rows = goes.size() + 1, columns = comes.size() + 1;
  if (goes.size() * comes.size() > mostPairs) {
    add(Kind::removed, before);
    return add(Kind::added, after);
  }
  // How many lines from here to the end can stay.
  std::vector<uint32_t> staying(rows * columns);
  const auto at = [&](size_t row, size_t column) -> uint32_t& { return staying[row * columns + column]; };
  for (size_t row = goes.size(); row-- > 0;) {
    for (size_t column = comes.size(); column-- > 0;) {
      at(row, column) =
          goes[row] == comes[column]
              ? at(row + 1, column + 1) + 1
              : std::max(at(row + 1, column), at(row, column + 1));
    }
  }
  size_t row = 0, column = 0;
  while (row < goes.size() || column < comes.size()) {
    const bool isSame = row < goes.size() && column < comes.size() && goes[row] == comes[column];
    if (isSame) {
      add(Kind::plain, goes[row++]);
      ++column;
    } else if (row < goes.size() && (column == comes.size() || at(row + 1, column) >= at(row, column + 1))) {
      add(Kind::removed, goes[row++]);
    } else {
      add(Kind::added, comes[column++]);
    }
  }
}

/// Takes a text out of the input.
std::optional<std::string> take(JsonObject& input, std::string_view key) {
  const auto found = input.find(key);
  auto* text = found == input.end() ? nullptr : found->second.as<std::string>();
  if (!text) return std::nullopt;
  const std::string taken = std::move(*text);
  input.erase(found);
  return taken;
}

bool describeEdit(Description& description, JsonObject& edit) {
  if (!memberOf<std::string>(edit, "old_string") || !memberOf<std::string>(edit, "new_string")) return false;
  const std::string before = *take(edit, "old_string"), after = *take(edit, "new_string");
  if (before.empty())
    description.add(Kind::added, after);
  else if (after.empty())
    description.add(Kind::removed, before);
  else
    description.addChange(before, after);
  description.addRest(edit);
  return true;
}

bool describeEdits(Description& description, JsonObject& input) {
  auto* edits = memberOf<JsonArray>(input, "edits");
  if (!edits) return false;
  for (JsonValue& each : *edits) {
    auto* edit = each.as<JsonObject>();
    if (!edit || !describeEdit(description, *edit)) return false;
    if (&each != &edits->back()) description.add(Kind::remark, "");
  }
  input.erase("edits");
  description.addRest(input);
  return true;
}

/// @return whether the input is one of the tool's
bool describe(Description& description, const std::string& tool, JsonObject input) {
  if (tool == "Bash") {
    const auto command = take(input, "command");
    if (!command) return false;
    description.add(Kind::plain, *command);
    if (const auto purpose = take(input, "description")) description.add(Kind::remark, *purpose);
    description.addRest(input);
    return true;
  }
  const auto file = take(input, "file_path");
  if (!file) return false;
  description.add(Kind::object, *file);
  if (tool == "Edit") return describeEdit(description, input);
  if (tool == "MultiEdit") return describeEdits(description, input);
  const auto content = tool == "Write" ? take(input, "content") : std::nullopt;
  if (!content) return false;
  description.add(Kind::added, *content);
  description.addRest(input);
  return true;
}

}  // namespace

std::vector<CallLine> callLines(const std::string& tool, const std::string& input) {
  const auto json = parseJson(input);
  const auto* object = json ? json->as<JsonObject>() : nullptr;
  Description whole;
  if (!object || depthOf(*json) > deepest) {
    whole.add(Kind::plain, input);
    return whole.take();
  }
  Description description;
  if (describe(description, tool, *object)) return description.take();
  std::string text = writeJson(*json);
  text.pop_back();
  whole.add(Kind::plain, text);
  return whole.take();
}

}  // namespace tarnwick
