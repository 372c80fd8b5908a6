#pragma once
#include <optional>
#include <string>
#include <string_view>

#include "base/Observed.h"

namespace tarnwick {

/// The language of the interface. Ask each time a text is made: the answer may change while the program runs.
namespace L10n {

/// Overrides the user's language when set (demonstration mode). An empty override means English. Views that
/// have asked for the language follow it.
extern Observed<std::optional<std::string>> forced;

/// The active language code: `forced`, else the first of the user's preferred languages (LANGUAGE, LC_ALL,
/// LC_MESSAGES, LANG in the order of gettext), else "en".
std::string language();

/// True when the active language begins with "fr".
bool isFrench();

/// "fr_FR" or "en_US": the locale for dates and times.
const char* locale();

}  // namespace L10n

/// The English or the French form of a text, by the active language.
inline std::string tr(std::string_view english, std::string_view french) {
  return std::string(L10n::isFrench() ? french : english);
}

}  // namespace tarnwick
