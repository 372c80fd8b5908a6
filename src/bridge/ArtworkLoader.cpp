#include "bridge/ArtworkLoader.h"

#include <sys/resource.h>

namespace tarnwick {
namespace {

/// After each load nothing is loaded for so many times as long as its process has worked: a player that
/// changes covers without end cannot have more than a fifth of a core.
constexpr int64_t restAfterWork = 4;

/// Processor time of all children that have ended, in microseconds.
int64_t childTime() {
  struct rusage usage = {};
  ::getrusage(RUSAGE_CHILDREN, &usage);
  return (usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) * G_USEC_PER_SEC + usage.ru_utime.tv_usec +
         usage.ru_stime.tv_usec;
}

}  // namespace

void ArtworkLoader::want(const std::string& address, const std::string& track) {
  if (address == address_ && track == track_) return;
  address_ = address;
  track_ = track;
  load();
}

void ArtworkLoader::allowNetwork(bool allowed) {
  if (allowed == mayUseNetwork_) return;
  mayUseNetwork_ = allowed;
  load();
}

void ArtworkLoader::load() {
  isDue_ = true;
  if (address_.empty()) {
    id_ = 0;
    release();
  }
  if (process_) {
    process_->end();
  } else if (!address_.empty() && !rest_.isRunning()) {
    startLoading();
  }
}

void ArtworkLoader::startLoading() {
  isDue_ = false;
  timeBefore_ = childTime();
  process_ = std::make_unique<CoverProcess>(
      address_, mayUseNetwork_, [this](const std::string& picture) { finished(picture); });
}

void ArtworkLoader::finished(const std::string& picture) {
  process_.reset();
  rest_.start((childTime() - timeBefore_) * restAfterWork, [this] {
    if (isDue_ && !address_.empty()) startLoading();
  });
  if (isDue_) return;
  if (picture.empty()) {
    id_ = 0;
    release();
  } else {
    const auto* data = reinterpret_cast<const guchar*>(picture.data());
    const std::string checksum(
        Owned<char>(g_compute_checksum_for_data(G_CHECKSUM_SHA1, data, picture.size())).get());
    if (id_ == 0 || checksum != checksum_) {
      id_ = ++lastId_;
      checksum_ = checksum;
      base64_ = Owned<char>(g_base64_encode(data, picture.size())).get();
    }
  }
  onLoaded_();
}

}  // namespace tarnwick
