#include "base/AppSettings.h"

namespace tarnwick {

AppSettings::Flag::Flag(AppSettings& owner, const char* key, bool fallback)
    : owner_(owner), key_(key), value_(owner, owner.defaults_.boolean(key).value_or(fallback)) {}

AppSettings::Flag& AppSettings::Flag::operator=(bool value) {
  owner_.defaults_.set(key_, value);
  value_ = value;
  return *this;
}

AppSettings::Text::Text(AppSettings& owner, const char* key) : owner_(owner), key_(key), value_(owner) {
  const auto stored = owner.defaults_.strings(key);
  if (stored && stored->size() == 1) value_ = stored->front();
}

AppSettings::Text& AppSettings::Text::operator=(const std::string& value) {
  owner_.defaults_.set(key_, value.empty() ? std::vector<std::string>() : std::vector{value});
  value_ = value;
  return *this;
}

}  // namespace tarnwick
