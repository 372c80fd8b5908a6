#pragma once
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/AudioDevices.h"

namespace tarnwick {

/// What the audio daemon tells about one of its devices.
struct PulseDevice {
  AudioScope scope = AudioScope::output;
  /// The daemon's own name, unique among the devices of this scope.
  std::string key;
  /// For the user.
  std::string name;
  AudioTransport transport = AudioTransport::unknown;
  /// See `PulseClient::fullVolume`.
  uint32_t volume = 0;
  bool muted = false;
  /// Each of its sockets is known to be empty.
  bool isUnplugged = false;
};

/// All that the audio daemon told at one time.
struct PulseSnapshot {
  std::vector<PulseDevice> devices;
  std::string defaultOutput;
  std::string defaultInput;
};

/// One connection to the audio daemon, on the main thread; never waits. It lives in a module of its own, as
/// the daemon's library brings a dozen others along.
class PulseClient {
 public:
  static constexpr uint32_t fullVolume = 0x10000;

  virtual ~PulseClient() = default;

  /// Begins to connect, once. What the client has to say comes through these, until it is destroyed, which
  /// none of them may do.
  virtual void connect() = 0;
  /// Connected, or something is different than before.
  std::function<void()> onChange;
  /// The answer to `fetch`.
  std::function<void(const PulseSnapshot&)> onSnapshot;
  /// One of the writes was carried out, or refused.
  std::function<void()> onWritten;
  /// The connection is lost or could not be made: nothing more will come.
  std::function<void()> onClosed;

  /// Asks for everything. Not again before the answer is there.
  virtual void fetch() = 0;
  virtual void setVolume(AudioScope scope, const std::string& key, uint32_t volume) = 0;
  virtual void setMuted(AudioScope scope, const std::string& key, bool muted) = 0;
  virtual void setDefault(AudioScope scope, const std::string& key) = 0;
};

/// Makes a client.
using PulseClientMaker = std::function<std::unique_ptr<PulseClient>()>;

/// What the module's one function returns; the caller owns it.
using MakePulseClient = PulseClient*();
inline constexpr const char* makePulseClientName = "tarnwickMakePulseClient";

}  // namespace tarnwick
