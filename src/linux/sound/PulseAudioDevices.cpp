#include "linux/sound/PulseAudioDevices.h"

#include <algorithm>
#include <cmath>

#include "linux/process/Module.h"

namespace tarnwick {
namespace {

/// Between two looks at the devices: nobody sees more than one change in a frame.
constexpr double frame = 1.0 / 60;
/// A daemon may confirm a write before its devices show it. So long after the last one nobody looks.
constexpr double rest = 0.1;

bool sameDevices(const PulseSnapshot& a, const PulseSnapshot& b) {
  return a.defaultOutput == b.defaultOutput && a.defaultInput == b.defaultInput &&
         std::equal(a.devices.begin(), a.devices.end(), b.devices.begin(), b.devices.end(),
             [](const PulseDevice& x, const PulseDevice& y) {
               return x.scope == y.scope && x.key == y.key && x.name == y.name &&
                      x.transport == y.transport && x.isUnplugged == y.isUnplugged;
             });
}

}  // namespace

PulseClientMaker loadPulseModule(const std::string& folder) {
  auto* make =
      reinterpret_cast<MakePulseClient*>(moduleFunction(folder + "/PulseAudio.so", makePulseClientName));
  if (!make) return nullptr;
  return [make] { return std::unique_ptr<PulseClient>(make()); };
}

PulseAudioDevices::PulseAudioDevices(
    Scheduler& scheduler, std::function<PulseClientMaker()> load, double retrySeconds)
    : scheduler_(scheduler), load_(std::move(load)), backoff_(scheduler, retrySeconds) {}

void PulseAudioDevices::connect() {
  const auto loaded = std::make_shared<PulseClientMaker>();
  loading_ = scheduler_.background([loaded, load = load_] { *loaded = load(); },
      [this, loaded] {
        makeClient_ = *loaded;
        if (makeClient_) {
          openClient();
        } else {
          answered();
        }
      });
}

void PulseAudioDevices::openClient() {
  fetching_ = stale_ = false;
  pendingWrites_ = 0;
  client_ = makeClient_();
  client_->onChange = [this] { refresh(); };
  client_->onSnapshot = [this](const PulseSnapshot& snapshot) { received(snapshot); };
  client_->onWritten = [this] { written(); };
  client_->onClosed = [this] { closed(); };
  client_->connect();
}

void PulseAudioDevices::closed() {
  backoff_.retry([this] { openClient(); });
  pause_ = Task();
  unsent_.clear();
  adopt({});
  answered();
}

void PulseAudioDevices::refresh() {
  stale_ = true;
  if (fetching_ || pendingWrites_ > 0 || !unsent_.empty() || pause_) return;
  stale_ = false;
  fetching_ = true;
  answerOutdated_ = false;
  client_->fetch();
}

void PulseAudioDevices::received(const PulseSnapshot& snapshot) {
  fetching_ = false;
  backoff_.succeeded();
  // Not before what has been written meanwhile has come to rest.
  if (!pause_) pauseFor(frame);
  if (answerOutdated_) {
    stale_ = true;
  } else {
    adopt(snapshot);
    answered();
  }
}

void PulseAudioDevices::answered() {
  if (onAnswer) onAnswer();
}

void PulseAudioDevices::written() {
  if (--pendingWrites_ > 0) return;
  if (!unsent_.empty()) return sending_.request();
  // Whether it was carried out shows in the next answer.
  stale_ = true;
  pauseFor(rest);
}

void PulseAudioDevices::pauseFor(double seconds) {
  pause_ = scheduler_.after(seconds, [this] {
    pause_ = Task();
    if (stale_) refresh();
  });
}

void PulseAudioDevices::sendVolumes() {
  if (pendingWrites_ > 0) return;
  for (const auto& [scope, key] : std::exchange(unsent_, {})) {
    const PulseDevice* device = find(id({scope, key}), scope);
    if (!device) continue;
    ++pendingWrites_;
    client_->setVolume(scope, key, device->volume);
  }
  if (pendingWrites_ == 0 && stale_) refresh();
}

void PulseAudioDevices::adopt(PulseSnapshot snapshot) {
  for (const PulseDevice& device : snapshot.devices) {
    ids_.try_emplace({device.scope, device.key}, static_cast<uint32_t>(ids_.size() + 1));
  }
  const PulseSnapshot before = std::exchange(state_, std::move(snapshot));
  std::vector<uint32_t> changedLevels;
  for (const PulseDevice& device : state_.devices) {
    const auto old = std::find_if(before.devices.begin(), before.devices.end(),
        [&](const PulseDevice& other) { return other.scope == device.scope && other.key == device.key; });
    if (old == before.devices.end()) continue;
    if (old->volume != device.volume || old->muted != device.muted) {
      changedLevels.push_back(id({device.scope, device.key}));
    }
  }
  if (!sameDevices(before, state_)) devices_.notifyObservers();
  for (const uint32_t changed : changedLevels) levels_[changed].notifyObservers();
}

std::vector<AudioDevice> PulseAudioDevices::all() const {
  std::vector<AudioDevice> devices;
  for (const PulseDevice& device : state_.devices) {
    const bool isOutput = device.scope == AudioScope::output;
    if (device.isUnplugged && device.key != (isOutput ? state_.defaultOutput : state_.defaultInput)) continue;
    devices.push_back({id({device.scope, device.key}), device.name, device.transport, isOutput, !isOutput});
  }
  return devices;
}

uint32_t PulseAudioDevices::id(const Key& key) const {
  const auto entry = ids_.find(key);
  return entry == ids_.end() ? 0 : entry->second;
}

const PulseDevice* PulseAudioDevices::find(uint32_t wanted, AudioScope scope) const {
  for (const PulseDevice& device : state_.devices) {
    if (device.scope == scope && id({device.scope, device.key}) == wanted) return &device;
  }
  return nullptr;
}

PulseDevice* PulseAudioDevices::find(uint32_t wanted, AudioScope scope) {
  return const_cast<PulseDevice*>(std::as_const(*this).find(wanted, scope));
}

uint32_t PulseAudioDevices::defaultDevice(AudioScope scope) const {
  // It may be one that is not listed: the monitor of an output.
  const uint32_t found =
      id({scope, scope == AudioScope::output ? state_.defaultOutput : state_.defaultInput});
  return find(found, scope) ? found : 0;
}

void PulseAudioDevices::setDefaultDevice(AudioScope scope, uint32_t wanted) {
  if (const PulseDevice* device = find(wanted, scope)) client_->setDefault(scope, device->key);
}

std::optional<double> PulseAudioDevices::volume(uint32_t wanted, AudioScope scope) const {
  const PulseDevice* device = find(wanted, scope);
  if (!device) return std::nullopt;
  // The daemon can amplify beyond what the device plays by itself.
  return std::min(1.0, static_cast<double>(device->volume) / PulseClient::fullVolume);
}

void PulseAudioDevices::setVolume(uint32_t wanted, AudioScope scope, double volume) {
  PulseDevice* device = find(wanted, scope);
  if (!device) return;
  device->volume = static_cast<uint32_t>(std::lround(std::clamp(volume, 0.0, 1.0) * PulseClient::fullVolume));
  answerOutdated_ = true;
  unsent_.insert({scope, device->key});
  sending_.request();
}

std::optional<bool> PulseAudioDevices::isMuted(uint32_t wanted, AudioScope scope) const {
  const PulseDevice* device = find(wanted, scope);
  return device ? std::optional(device->muted) : std::nullopt;
}

void PulseAudioDevices::setMuted(uint32_t wanted, AudioScope scope, bool muted) {
  PulseDevice* device = find(wanted, scope);
  if (!device) return;
  device->muted = muted;
  answerOutdated_ = true;
  ++pendingWrites_;
  client_->setMuted(scope, device->key, muted);
}

Subscription PulseAudioDevices::observe(std::function<void()> onChange) {
  return devices_.observe(std::move(onChange));
}

Subscription PulseAudioDevices::observeLevels(uint32_t wanted, AudioScope, std::function<void()> onChange) {
  return levels_[wanted].observe(std::move(onChange));
}

}  // namespace tarnwick
