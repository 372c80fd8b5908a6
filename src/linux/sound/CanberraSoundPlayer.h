#pragma once
#include <memory>

#include "base/Scheduler.h"
#include "platform/SoundPlayer.h"

struct ca_context;

namespace tarnwick {

/// Sounds of the desktop's sound theme. The sound library is woken by the first sound, and off the main
/// thread: reaching the audio daemon may take long. Without a daemon there is silence.
class CanberraSoundPlayer : public SoundPlayer {
 public:
  explicit CanberraSoundPlayer(Scheduler& scheduler);
  ~CanberraSoundPlayer() override;
  void play(const std::string& name) override;

 private:
  struct Player;

  Scheduler& scheduler_;
  /// Shared with the work in the background.
  std::shared_ptr<Player> player_;
  Task playing_;
};

}  // namespace tarnwick
