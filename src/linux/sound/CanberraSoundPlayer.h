#pragma once
#include <map>
#include <memory>

#include "base/Scheduler.h"
#include "platform/SoundPlayer.h"

struct ca_context;

namespace tarnwick {

/// Sounds of the desktop's sound theme. The sound library is woken by the first sound, and off the main
/// thread: reaching the audio daemon may take long. Without a daemon there is silence.
class CanberraSoundPlayer : public SoundPlayer {
 public:
  /// @param patience so many seconds are sounds left out because the daemon has not taken the one before
  explicit CanberraSoundPlayer(Scheduler& scheduler, double patience = 10);
  ~CanberraSoundPlayer() override;
  void play(Sound sound) override;

 private:
  class Player;

  Scheduler& scheduler_;
  const double patience_;
  /// Shared with the work in the background.
  std::shared_ptr<Player> player_;
  int number_ = 0;
  double startedAt_ = 0;
  /// The players, by their number, that the daemon keeps waiting.
  std::map<int, Task> waiting_;
};

}  // namespace tarnwick
