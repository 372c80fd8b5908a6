#pragma once
#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "bridge/GLib.h"

namespace tarnwick {

/// Fetches cover art off the main loop: from file:, data: and http(s): addresses, up to 8 MiB, one at a time.
/// While a new cover is on its way the old one stays.
class ArtworkLoader {
 public:
  /// `onLoaded` is told when a cover has come, or turned out not to. The loader must outlive its loop.
  explicit ArtworkLoader(std::function<void()> onLoaded) : onLoaded_(std::move(onLoaded)) {}

  /// Wants the cover at `url` (empty: none) for a track. A new track may have a new cover at the old address.
  void want(const std::string& url, const std::string& track);

  /// Another number for each other cover; 0: there is none.
  int64_t id() const { return id_; }
  /// The current cover in base64; empty once it was released.
  const std::string& base64() const { return base64_; }
  void release() { std::string().swap(base64_); }

 private:
  struct Load;

  void startLoading();
  void finished(const Load& load);

  const std::function<void()> onLoaded_;
  std::string url_, track_;
  int64_t id_ = 0, lastId_ = 0;
  std::string base64_;
  std::string checksum_;
  /// The load under way; told when nobody waits for it any more.
  std::shared_ptr<std::atomic<bool>> cancelled_;
  bool wantsAnother_ = false;
};

}  // namespace tarnwick
