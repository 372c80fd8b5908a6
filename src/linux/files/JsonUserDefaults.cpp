#include "linux/files/JsonUserDefaults.h"

#include <algorithm>
#include <filesystem>

#include "base/AtomicFile.h"

namespace tarnwick {
namespace {

auto memberNamed(auto& members, const std::string& key) {
  return std::find_if(members.begin(), members.end(),
                      [written = jsonString(key)](const JsonMember& each) { return each.key == written; });
}

}  // namespace

JsonUserDefaults::JsonUserDefaults(const Folders& folders)
    : folder_(folders.configuration() + "/Tarnwick"), path_(folder_ + "/defaults.json") {
  makePrivateFolder(folder_);
  load();
}

JsonUserDefaults::FileState JsonUserDefaults::load() {
  std::string text;
  if (const std::error_code error = readFile(path_, text)) {
    return error == std::errc::no_such_file_or_directory ? FileState::absent : FileState::damaged;
  }
  auto members = membersOfObject(text);
  if (!members) return FileState::damaged;
  members_ = std::move(*members);
  return FileState::whole;
}

const std::string* JsonUserDefaults::find(const std::string& key) const {
  const auto member = memberNamed(members_, key);
  return member == members_.end() ? nullptr : &member->value;
}

std::optional<bool> JsonUserDefaults::boolean(const std::string& key) const {
  const std::string* json = find(key);
  if (json && *json == "true") return true;
  if (json && *json == "false") return false;
  return std::nullopt;
}

std::optional<std::vector<std::string>> JsonUserDefaults::strings(const std::string& key) const {
  const std::string* json = find(key);
  return json ? stringsOfArray(*json) : std::nullopt;
}

void JsonUserDefaults::set(const std::string& key, bool value) { store(key, value ? "true" : "false"); }

void JsonUserDefaults::set(const std::string& key, const std::vector<std::string>& value) {
  std::string json = "[";
  for (const std::string& text : value) {
    if (json.size() > 1) json += ",";
    json += jsonString(text);
  }
  store(key, json + "]");
}

void JsonUserDefaults::store(const std::string& key, const std::string& json) {
  const FileState state = load();
  if (state == FileState::damaged) keepAside();

  const auto member = memberNamed(members_, key);
  if (member == members_.end()) {
    members_.push_back({jsonString(key), json});
  } else if (state == FileState::whole && member->value == json) {
    return;
  } else {
    member->value = json;
  }

  std::string text = "{";
  for (const JsonMember& each : members_) {
    text += (text.size() > 1 ? ",\n  " : "\n  ") + each.key + ": " + each.value;
  }
  (void)writePrivateFile(path_, text + "\n}\n");
}

void JsonUserDefaults::keepAside() const {
  std::string aside = path_ + ".damaged";
  std::error_code error;
  for (int number = 2; std::filesystem::exists(aside, error); ++number) {
    aside = path_ + ".damaged-" + std::to_string(number);
  }
  std::filesystem::rename(path_, aside, error);
}

}  // namespace tarnwick
