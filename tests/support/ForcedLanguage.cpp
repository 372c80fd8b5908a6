#include "support/ForcedLanguage.h"

#include "base/L10n.h"

namespace tarnwick {

ForcedLanguage::ForcedLanguage(const char* code) { L10n::forced = std::string(code); }
ForcedLanguage::~ForcedLanguage() { L10n::forced = std::nullopt; }

}  // namespace tarnwick
