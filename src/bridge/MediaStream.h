#pragma once
#include <cstdint>
#include <string>

#include "bridge/ArtworkLoader.h"
#include "bridge/CommandReader.h"
#include "bridge/LineWriter.h"
#include "bridge/PlayerList.h"

namespace tarnwick {

/// Tells on standard output what plays, one complete state a line, and passes commands from standard input to
/// the player.
class MediaStream {
 public:
  MediaStream() { update(); }

 private:
  /// Has a line written soon, when the state has changed.
  void update();
  void writeWhenDue();
  int64_t nextLineDue(bool playerIsThere);
  void writeLine(Player* player);
  /// Writes the state once more, for a reader that has expected another.
  void repeat();
  void perform(const std::string& command);

  LineWriter writer_{[this] { update(); }};
  CommandReader reader_{[this](const std::string& command) { perform(command); }};
  ArtworkLoader artwork_{[this] { update(); }};
  Timer pause_;
  int64_t pauseEnd_ = 0;
  int64_t lastLineTime_ = 0;
  int64_t nothingSince_ = 0;
  /// The last line without its cover.
  std::string lastState_;
  int64_t artworkSent_ = 0;
  PlayerList players_{[this] { update(); }};
};

}  // namespace tarnwick
