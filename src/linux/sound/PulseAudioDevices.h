#pragma once
#include <map>
#include <memory>
#include <set>
#include <string>
#include <utility>

#include "base/Backoff.h"
#include "base/OncePerFrame.h"
#include "base/Scheduler.h"
#include "linux/sound/PulseClient.h"

namespace tarnwick {

/// Loads the module "PulseAudio.so" of that folder; makes nothing when it is missing.
PulseClientMaker loadPulseModule(const std::string& folder);

/// The devices of PulseAudio, or of PipeWire in its place. A daemon that is not there (yet, or for a while)
/// has no devices; it is looked for again and again. One device is one sink or one source. One to which
/// nothing is plugged in is left out, unless it is the default all the same.
class PulseAudioDevices : public AudioDevices {
 public:
  /// @param load answers what makes the clients, or nothing when that is missing; called off the main thread
  /// @param retrySeconds see `Backoff`
  PulseAudioDevices(Scheduler& scheduler, std::function<PulseClientMaker()> load, double retrySeconds = 5);

  /// The daemon has told its devices, or there is none.
  std::function<void()> onAnswer;

  /// Begins to look for the daemon; until then there are no devices.
  void connect();

  std::vector<AudioDevice> all() const override;
  uint32_t defaultDevice(AudioScope scope) const override;
  void setDefaultDevice(AudioScope scope, uint32_t id) override;
  std::optional<double> volume(uint32_t id, AudioScope scope) const override;
  void setVolume(uint32_t id, AudioScope scope, double volume) override;
  std::optional<bool> isMuted(uint32_t id, AudioScope scope) const override;
  void setMuted(uint32_t id, AudioScope scope, bool muted) override;
  Subscription observe(std::function<void()> onChange) override;
  Subscription observeLevels(uint32_t id, AudioScope scope, std::function<void()> onChange) override;

 private:
  using Key = std::pair<AudioScope, std::string>;

  void openClient();
  void closed();
  void refresh();
  void received(const PulseSnapshot& snapshot);
  void sendVolumes();
  void written();
  void pauseFor(double seconds);
  void adopt(PulseSnapshot snapshot);
  void answered();

  uint32_t id(const Key& key) const;
  const PulseDevice* find(uint32_t id, AudioScope scope) const;
  PulseDevice* find(uint32_t id, AudioScope scope);

  Scheduler& scheduler_;
  const std::function<PulseClientMaker()> load_;
  PulseClientMaker makeClient_;
  std::unique_ptr<PulseClient> client_;

  PulseSnapshot state_;
  /// Ids are for life: a device that returns, or that a new daemon finds again, is the same one.
  std::map<Key, uint32_t> ids_;
  ObservableObject devices_;
  std::map<uint32_t, ObservableObject> levels_;

  /// An answer is on its way.
  bool fetching_ = false;
  /// Something has changed since the last answer was asked for.
  bool stale_ = false;
  /// Writes that the daemon has not confirmed.
  int pendingWrites_ = 0;
  /// Devices whose volume is to be written, as it is then: one that is on its way is not overtaken.
  std::set<Key> unsent_;
  OncePerFrame sending_{scheduler_, [this] { sendVolumes(); }};
  /// There was a write after the answer had been asked for: it would undo what the user just did.
  bool answerOutdated_ = false;
  /// Runs for a frame's time after each answer, and until what was written has come to rest.
  Task pause_;
  Task loading_;
  Backoff backoff_;
};

}  // namespace tarnwick
