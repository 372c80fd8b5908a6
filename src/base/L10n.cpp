#include "base/L10n.h"

#include "base/Environment.h"

namespace tarnwick::L10n {

namespace {

const ObservableObject owner;

}  // namespace

Observed<std::optional<std::string>> forced{owner};

namespace {

std::string_view preferredLanguage() {
  std::string_view locale;
  for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
    locale = environment(name);
    if (!locale.empty()) break;
  }
  // gettext ignores LANGUAGE in the C locale: a user who wants no translation gets none.
  if (locale.empty() || locale == "C" || locale == "POSIX" || locale.starts_with("C.")) return "en";
  const std::string_view list = environment("LANGUAGE");
  const std::string_view first = list.substr(0, list.find(':'));
  return first.empty() ? locale : first;
}

}  // namespace

std::string language() { return forced->value_or(std::string(preferredLanguage())); }

bool isFrench() {
  const auto& language = *forced;
  return (language ? std::string_view(*language) : preferredLanguage()).starts_with("fr");
}

const char* locale() { return isFrench() ? "fr_FR" : "en_US"; }

}  // namespace tarnwick::L10n
