#pragma once
#include <cstdint>
#include <functional>
#include <string>

#include "bridge/Bus.h"
#include "bridge/Track.h"

namespace tarnwick {

inline constexpr const char* playerPath = "/org/mpris/MediaPlayer2";
inline constexpr const char* playerInterface = "org.mpris.MediaPlayer2.Player";

/// One player on the bus: what it plays, and commands to it. Nothing here waits for the player; one that does
/// not answer is asked again every few seconds.
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
  /// The position in microseconds, and when it was there, in microseconds since 1970.
  int64_t position() const { return position_; }
  int64_t positionDate() const { return positionDate_; }
  /// 0: unknown.
  uint32_t process() const { return process_; }
  /// Name of the program's desktop entry; may be empty.
  const std::string& desktopEntry() const { return desktopEntry_; }

  /// Takes a PropertiesChanged signal of the player's interface: a{sv} and as.
  void propertiesChanged(GVariant* changed, GVariant* invalidated);
  void seeked(int64_t position) { setPosition(position); }

  /// `refused` is called when the player does not do it.
  void togglePlayPause(std::function<void()> refused);
  void next() { command("Next", nullptr, {}); }
  void previous() { command("Previous", nullptr, {}); }
  void seek(double seconds);

 private:
  void call(const char* interface, const char* method, GVariant* arguments, BusReply reply);
  void command(const char* method, GVariant* arguments, BusReply reply);
  void identify();
  void load();
  void apply(GVariant* properties);
  void setStatus(Status status);
  void setPosition(int64_t position);
  void correctPosition(int64_t reported);
  void askPosition();
  void poll();
  int64_t positionNow() const;

  GDBusConnection* bus_;
  const std::string owner_;
  const std::function<void()> onChange_;
  const Owned<GCancellable> life_{g_cancellable_new()};

  bool loaded_ = false, loading_ = false, askingPosition_ = false;
  Status status_ = Status::stopped;
  uint64_t lastPlayed_ = 0;
  Track track_;
  int64_t position_ = 0, positionDate_ = 0;
  /// When `position_` was true on the clock that is never set, in microseconds.
  int64_t positionTime_ = 0;
  uint32_t process_ = 0;
  std::string desktopEntry_;
  Timer poll_;
};

}  // namespace tarnwick
