#pragma once

namespace tarnwick {

/// Makes that language the active one for as long as it lives.
class ForcedLanguage {
 public:
  explicit ForcedLanguage(const char* code);
  ForcedLanguage(const ForcedLanguage&) = delete;
  ForcedLanguage& operator=(const ForcedLanguage&) = delete;
  ~ForcedLanguage();
};

}  // namespace tarnwick
