#include "base/AppSettings.h"

namespace tarnwick {

AppSettings::Flag::Flag(AppSettings& owner, const char* key, bool fallback)
    : owner_(owner), key_(key), value_(owner.defaults_.boolean(key).value_or(fallback)) {}

AppSettings::Flag& AppSettings::Flag::operator=(bool value) {
  owner_.defaults_.set(key_, value);
  if (value != value_) {
    value_ = value;
    owner_.notifyObservers();
  }
  return *this;
}

}  // namespace tarnwick
