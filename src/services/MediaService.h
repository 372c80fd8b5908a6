#pragma once
#include <functional>
#include <optional>
#include <string>

#include "base/Color.h"
#include "base/Image.h"
#include "base/Observed.h"

namespace tarnwick {

/// What is playing, and commands to the player. The media bridge that feeds it does not exist yet: until it
/// does nothing plays, and commands go nowhere.
class MediaService : public ObservableObject {
 public:
  /// Empty: nothing is playing.
  Observed<std::string> title{*this};
  Observed<std::string> artist{*this};
  /// What the player reports; see `isPlaying`.
  Observed<bool> playing{*this};
  /// The cover.
  Observed<std::optional<Image>> artwork{*this};
  /// A tint that goes with the cover; white without one.
  Observed<Color> accent{*this, white()};
  /// The icon of the program that plays.
  Observed<std::optional<Image>> appIcon{*this};

  /// A track is there and runs.
  bool isPlaying() const { return playing && !title->empty(); }

  void start() {}
  void nextTrack() { send("cmd 4"); }
  void previousTrack() { send("cmd 5"); }

  /// Takes one command line for the bridge; none while there is no bridge.
  std::function<void(const std::string&)> onCommand;

 private:
  void send(const std::string& command) {
    if (onCommand) onCommand(command);
  }
};

}  // namespace tarnwick
