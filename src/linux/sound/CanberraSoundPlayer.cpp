#include "linux/sound/CanberraSoundPlayer.h"

#include <canberra.h>

#include <map>
#include <mutex>
#include <vector>

namespace tarnwick {
namespace {

/// Sounds of the naming convention, the first that the theme has.
const std::map<std::string, std::vector<const char*>> themeSounds{
    {"Glass", {"complete"}},
    {"Funk", {"message"}},
    {"Pop", {"power-plug"}},
    {"Basso", {"battery-low", "dialog-warning"}},  // the common theme has no battery-low
};

}  // namespace

struct CanberraSoundPlayer::Player {
  std::mutex mutex;
  ca_context* context = nullptr;

  ~Player() { close(); }

  void close() {
    if (context) ca_context_destroy(context);
    context = nullptr;
  }

  void play(const std::vector<const char*>& sounds) {
    const std::lock_guard lock(mutex);
    if (!context && ca_context_create(&context) != CA_SUCCESS) return;
    for (const char* sound : sounds) {
      const int result =
          ca_context_play(context, 0, CA_PROP_EVENT_ID, sound, CA_PROP_APPLICATION_NAME, "Tarnwick",
                          CA_PROP_APPLICATION_ID, "dev.tarnwick.Tarnwick", nullptr);
      if (result == CA_ERROR_NOTFOUND) continue;
      // A connection that failed does not recover: the next sound opens another.
      if (result != CA_SUCCESS) close();
      return;
    }
  }
};

CanberraSoundPlayer::CanberraSoundPlayer(Scheduler& scheduler)
    : scheduler_(scheduler), player_(std::make_shared<Player>()) {}

CanberraSoundPlayer::~CanberraSoundPlayer() = default;

void CanberraSoundPlayer::play(const std::string& name) {
  const auto sounds = themeSounds.find(name);
  // While the daemon keeps the last sound waiting, more of them must not queue up.
  if (sounds == themeSounds.end() || playing_) return;
  playing_ = scheduler_.background([player = player_, &list = sounds->second] { player->play(list); },
                                   [this] { playing_ = Task(); });
}

}  // namespace tarnwick
