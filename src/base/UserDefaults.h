#pragma once
#include <optional>
#include <string>
#include <vector>

namespace tarnwick {

/// The user's stored preferences: typed values by key, written through at once. A key that is absent or holds
/// another type reads as nothing. Failures to write are silent.
class UserDefaults {
 public:
  virtual ~UserDefaults() = default;
  virtual std::optional<bool> boolean(const std::string& key) const = 0;
  virtual std::optional<std::vector<std::string>> strings(const std::string& key) const = 0;
  virtual void set(const std::string& key, bool value) = 0;
  virtual void set(const std::string& key, const std::vector<std::string>& value) = 0;
};

}  // namespace tarnwick
