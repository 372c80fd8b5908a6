#include "linux/sound/CanberraSoundPlayer.h"

#include <canberra.h>

#include <vector>

namespace tarnwick {
namespace {

/// Each holds a thread.
constexpr size_t mostWaiting = 3;

/// Names of the sound naming specification, of which the first that the theme has counts.
std::vector<const char*> themeSounds(Sound sound) {
  switch (sound) {
    case Sound::complete:
      return {"complete"};
    case Sound::message:
      return {"message"};
    case Sound::powerPlug:
      return {"power-plug"};
    case Sound::batteryLow:
      break;
  }
  return {"battery-low", "dialog-warning"};  // the common theme has no battery-low
}

}  // namespace

/// One connection to the daemon, used by one piece of work at a time.
class CanberraSoundPlayer::Player {
 public:
  ~Player() { close(); }

  void play(const std::vector<const char*>& sounds) {
    if (!context_ && ca_context_create(&context_) != CA_SUCCESS) return;
    for (const char* sound : sounds) {
      const int result = ca_context_play(context_, 0, CA_PROP_EVENT_ID, sound, CA_PROP_APPLICATION_NAME,
          "Tarnwick", CA_PROP_APPLICATION_ID, "dev.tarnwick.Tarnwick", nullptr);
      if (result == CA_ERROR_NOTFOUND) continue;
      // A connection that failed does not recover: the next sound opens another.
      if (result != CA_SUCCESS) close();
      return;
    }
  }

 private:
  void close() {
    if (context_) ca_context_destroy(context_);
    context_ = nullptr;
  }

  ca_context* context_ = nullptr;
};

CanberraSoundPlayer::CanberraSoundPlayer(Scheduler& scheduler, double patience)
    : scheduler_(scheduler), patience_(patience), player_(std::make_shared<Player>()) {}

CanberraSoundPlayer::~CanberraSoundPlayer() = default;

void CanberraSoundPlayer::play(Sound sound) {
  const double now = scheduler_.uptime();
  if (waiting_.contains(number_)) {
    // While the daemon keeps the last sound waiting, more of them must not queue up. If it has died over it,
    // another one may be there by now.
    if (now - startedAt_ < patience_ || waiting_.size() == mostWaiting) return;
    player_ = std::make_shared<Player>();
    ++number_;
  }
  startedAt_ = now;
  waiting_[number_] = scheduler_.background([player = player_, sound] { player->play(themeSounds(sound)); },
      [this, number = number_] { waiting_.erase(number); });
}

}  // namespace tarnwick
