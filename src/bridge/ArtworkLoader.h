#pragma once
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "bridge/CoverProcess.h"
#include "bridge/GLib.h"

namespace tarnwick {

/// Has covers fetched and made small, one at a time. While a new cover is on its way the old one stays.
class ArtworkLoader {
 public:
  /// `onLoaded` is told when a cover has come, or turned out not to.
  explicit ArtworkLoader(std::function<void()> onLoaded) : onLoaded_(std::move(onLoaded)) {}

  /// Wants the cover at `address` (empty: none) for a track. A new track may have a new cover at the old
  /// address.
  void want(const std::string& address, const std::string& track);
  /// Whether covers that others keep on the network may be fetched; at first they may not.
  void allowNetwork(bool allowed);

  /// Another number for each other cover; 0: there is none.
  int64_t id() const { return id_; }
  /// The current cover, a PNG file in base64; empty once it was released.
  const std::string& base64() const { return base64_; }
  void release() { std::string().swap(base64_); }

 private:
  void load();
  void startLoading();
  void finished(const std::string& picture);

  const std::function<void()> onLoaded_;
  std::string address_, track_;
  bool mayUseNetwork_ = false;
  int64_t id_ = 0, lastId_ = 0;
  std::string base64_;
  std::string checksum_;
  /// The load under way; null: none.
  std::unique_ptr<CoverProcess> process_;
  /// The cover that is wanted has not begun to load.
  bool isDue_ = false;
  /// Processor time of the ended children when the load began, in microseconds.
  int64_t timeBefore_ = 0;
  Timer rest_;
};

}  // namespace tarnwick
