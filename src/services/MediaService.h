#pragma once
#include <memory>
#include <optional>
#include <string>

#include "base/AppSettings.h"
#include "base/Color.h"
#include "base/Image.h"
#include "base/Observed.h"
#include "base/Scheduler.h"
#include "platform/Applications.h"
#include "platform/ChildProcesses.h"
#include "platform/Folders.h"
#include "platform/ImageDecoder.h"
#include "platform/SystemLog.h"
#include "services/MediaReader.h"

namespace tarnwick {

/// What is playing, and commands to the player. Both go through the media bridge: a program of its own that
/// writes one state a line, and is started again whenever it ends.
class MediaService : public ObservableObject {
 public:
  /// What the service needs of the desktop. All of it outlives the service.
  struct Ports {
    Scheduler& scheduler;
    const Folders& folders;
    ChildProcesses& processes;
    Applications& applications;
    const ImageDecoder& images;
    SystemLog& log;
  };
  explicit MediaService(const Ports& ports);

  /// Empty: nothing is playing.
  Observed<std::string> title{*this};
  Observed<std::string> artist{*this};
  Observed<std::string> album{*this};
  /// Length of the track in seconds; 0 or less: unknown.
  Observed<double> duration{*this};
  /// Position in seconds at the instant `timestamp`.
  Observed<double> elapsed{*this};
  Observed<Date> timestamp;
  /// Seconds of the track that are played in a second.
  Observed<double> rate{*this, 1};
  /// The player lets others choose the position.
  Observed<bool> canSeek{*this, true};
  /// What the player reports; see `isPlaying`.
  Observed<bool> playing{*this};
  /// The cover.
  Observed<std::optional<Image>> artwork{*this};
  /// A tint that goes with the cover; white without one.
  Observed<Color> accent{*this, white()};
  /// The program that plays, and its icon.
  Observed<std::optional<FilePath>> appBundleURL{*this};
  Observed<std::optional<Image>> appIcon{*this};
  /// The demonstration's tracks stay on screen: what the bridge says is not shown.
  /// Set by `showcaseBegin` and `showcaseEnd`.
  bool frozen = false;

  /// A track is there and runs.
  bool isPlaying() const { return playing && !title->empty(); }
  /// The position in seconds, within the track. What the wall clock was set by and what the machine has slept
  /// since `timestamp` was not played.
  double currentElapsed(Date at) const;

  /// Starts the bridge, unless it runs or is not installed. `settings` must outlive the service.
  void start(const AppSettings& settings);
  void seek(double seconds);
  void togglePlayPause();
  void nextTrack() { send("cmd 4"); }
  void previousTrack() { send("cmd 5"); }
  /// Brings the program that plays forward, or starts it where that cannot be done.
  void openSourceApp();

  /// From now on the demonstration says what plays, until its end: then it is what plays by then.
  void showcaseBegin() { frozen = true; }
  void showcaseEnd();
  /// A track of the demonstration; any number will do.
  void showcaseTrack(int index);
  void showcasePlaying(bool plays);
  /// A track for snapshots.
  void debugFill();

 private:
  void startBridge();
  void allowNetwork();
  void setPosition(double seconds, Date at);
  /// How far the wall clock is ahead of the one that nobody sets and that sleeps when the machine does.
  double clockLead() const { return ports_.scheduler.now().secondsSince1970 - ports_.scheduler.uptime(); }
  void readOutput();
  void take(MediaUpdate update);
  void showLive();
  void bridgeEnded();
  void send(const std::string& command);

  const Ports ports_;
  /// What the bridge has told, and when; whole.
  MediaUpdate live_{{}, MediaArtwork{}, Application{}};
  Date liveSince_;
  double leadWhenLive_ = 0;
  const AppSettings* settings_ = nullptr;
  Subscription settingsSubscription_;
  /// What the bridge was told last.
  bool networkAllowed_ = false;
  /// `clockLead` at `timestamp`.
  double leadAtTimestamp_ = clockLead();
  /// The player can bring its window forward by itself.
  bool canRaise_ = false;
  std::unique_ptr<ChildProcess> process_;
  /// Works in the background, on one piece of output at a time.
  std::shared_ptr<MediaReader> reader_;
  Task reading_;
  Task pace_;
  Task restart_;
};

}  // namespace tarnwick
