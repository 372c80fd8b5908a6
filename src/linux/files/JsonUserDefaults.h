#pragma once
#include <string>
#include <vector>

#include "base/UserDefaults.h"
#include "json/JsonValue.h"
#include "platform/Folders.h"

namespace tarnwick {

/// Preferences in "Tarnwick/defaults.json" of the configuration folder: one JSON object, whose keys are
/// sorted. What is not ours in it stays, also what another program has added since.
class JsonUserDefaults : public UserDefaults {
 public:
  explicit JsonUserDefaults(const Folders& folders);

  std::optional<bool> boolean(const std::string& key) const override;
  std::optional<std::vector<std::string>> strings(const std::string& key) const override;
  void set(const std::string& key, bool value) override;
  void set(const std::string& key, const std::vector<std::string>& value) override;

 private:
  /// damaged: it is there, but cannot be read or is no JSON object.
  enum class FileState { absent, whole, damaged };

  FileState load();
  void store(const std::string& key, JsonValue value);
  void keepAside() const;

  std::string folder_;
  std::string path_;
  JsonObject members_;
};

}  // namespace tarnwick
