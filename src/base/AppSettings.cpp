#include "base/AppSettings.h"

namespace tarnwick {

AppSettings::Flag::Flag(AppSettings& owner, const char* key, bool fallback)
    : owner_(owner), key_(key), value_(owner, owner.defaults_.boolean(key).value_or(fallback)) {}

AppSettings::Flag& AppSettings::Flag::operator=(bool value) {
  owner_.defaults_.set(key_, value);
  value_ = value;
  return *this;
}

}  // namespace tarnwick
