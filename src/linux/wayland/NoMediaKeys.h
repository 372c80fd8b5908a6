#pragma once
#include "platform/MediaKeys.h"

namespace tarnwick {

/// For where programs cannot take keys from the desktop.
class NoMediaKeys : public MediaKeys {
 public:
  bool isTrusted(const std::vector<MediaKey>&) override { return false; }
  void requestTrust() override {}
  std::optional<Subscription> tap(const std::vector<MediaKey>&, Handler) override { return std::nullopt; }
  Subscription observe(std::function<void()>) override { return {}; }
};

}  // namespace tarnwick
