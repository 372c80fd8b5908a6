#pragma once
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "bridge/Bus.h"
#include "bridge/Quota.h"
#include "bridge/Track.h"

namespace tarnwick {

/// One player on the bus: what it plays, and commands to it. Nothing here waits for the player; one that does
/// not answer is asked again every few seconds, and one that talks without end is only listened to at times.
class Player {
 public:
  enum class Status { stopped, paused, playing };

  /// `owner` is the unique bus name. `onChange` is told of everything that is new.
  Player(GDBusConnection* bus, std::string owner, std::function<void()> onChange);
  Player(const Player&) = delete;
  ~Player();

  const std::string& owner() const { return owner_; }
  Status status() const { return status_; }
  const Track& track() const { return track_; }
  /// The larger, the later it began or ceased to play; 0: has never played.
  uint64_t lastPlayed() const { return lastPlayed_; }
  /// Has something that it could go on with.
  bool hasTrack() const { return status_ != Status::stopped && !track_.title.empty(); }
  /// The position in microseconds, and when it was there, in microseconds since 1970 by the clock as it is
  /// set now.
  int64_t position() const { return position_; }
  int64_t positionDate() const;
  /// Seconds of the track that it plays in a second.
  double rate() const { return rate_; }
  /// 0: unknown.
  uint32_t process() const { return process_; }
  /// Name of the program's desktop entry; may be empty.
  const std::string& desktopEntry() const { return desktopEntry_; }
  /// Does not say that nobody can choose the position.
  bool canSeek() const { return canSeek_; }
  /// Says that it can bring its window forward.
  bool canRaise() const { return canRaise_; }

  void togglePlayPause() { command(playerInterface, "PlayPause"); }
  void next() { command(playerInterface, "Next"); }
  void previous() { command(playerInterface, "Previous"); }
  void seek(double seconds);
  void raise() { command(rootInterface, "Raise"); }

  /// Asks the player for everything anew; `then` is called when it has answered, or has not.
  void ask(std::function<void()> then);

 private:
  static constexpr const char* playerInterface = "org.mpris.MediaPlayer2.Player";
  static constexpr const char* rootInterface = "org.mpris.MediaPlayer2";

  void call(const char* interface, const char* method, GVariant* arguments, BusReply reply);
  void command(const char* interface, const char* method, GVariant* arguments = nullptr);
  void listen();
  bool isTooMuch(GVariant* message);
  void identify();
  void load();
  void propertiesChanged(GVariant* arguments);
  void apply(GVariant* properties);
  void setStatus(Status status);
  void setRate(double rate);
  void setCanSeek(bool can);
  void setPosition(int64_t position);
  void correctPosition(int64_t reported);
  void askPosition();
  void poll();
  int64_t positionNow() const;

  GDBusConnection* bus_;
  const std::string owner_;
  const std::function<void()> onChange_;
  const Owned<GCancellable> life_{g_cancellable_new()};
  std::optional<BusListener> properties_, seeks_;
  Quota quota_;
  /// Runs while nothing is heard of the player.
  Timer silence_;

  bool loaded_ = false, loading_ = false, askingPosition_ = false;
  Status status_ = Status::stopped;
  double rate_ = 1;
  uint64_t lastPlayed_ = 0;
  Track track_;
  int64_t position_ = 0;
  /// When `position_` was true on the clock that is never set, in microseconds.
  int64_t positionTime_ = 0;
  uint32_t process_ = 0;
  std::string desktopEntry_;
  bool canRaise_ = false;
  bool canSeek_ = true;
  Timer poll_;
};

}  // namespace tarnwick
