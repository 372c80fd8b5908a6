#include "showcase/memory/MemoryPorts.h"

#include <algorithm>

namespace tarnwick {

std::optional<uint64_t> MemoryFileIcons::version(const FilePath& file) {
  asked.push_back(file);
  const auto found = versions.find(file);
  return found == versions.end() ? std::nullopt : std::optional(found->second);
}

std::optional<Image> MemoryFileIcons::icon(const FilePath& file) {
  constexpr int side = 4;
  const auto color = 0xff000000u | uint32_t(versions.at(file));
  return Image{side, side, std::make_shared<std::vector<uint32_t>>(side * side, color)};
}

Subscription MemoryNotificationCenter::observe(
    const std::string& name, std::function<void(const StringMap&)> receive) {
  auto observer = std::make_shared<std::function<void(const StringMap&)>>(std::move(receive));
  observers_.emplace(name, observer);
  return Subscription(observer);
}

void MemoryNotificationCenter::post(const std::string& name, const StringMap& payload) {
  const auto [first, last] = observers_.equal_range(name);
  for (auto it = first; it != last; ++it) {
    if (auto observer = it->second.lock()) (*observer)(payload);
  }
}

std::optional<bool> MemoryUserDefaults::boolean(const std::string& key) const {
  const auto it = values.find(key);
  const bool* value = it == values.end() ? nullptr : std::get_if<bool>(&it->second);
  return value ? std::optional(*value) : std::nullopt;
}

std::optional<std::vector<std::string>> MemoryUserDefaults::strings(const std::string& key) const {
  const auto it = values.find(key);
  const auto* value = it == values.end() ? nullptr : std::get_if<std::vector<std::string>>(&it->second);
  return value ? std::optional(*value) : std::nullopt;
}

void MemoryUserDefaults::set(const std::string& key, bool value) {
  values[key] = value;
  writes.push_back(key);
}

void MemoryUserDefaults::set(const std::string& key, const std::vector<std::string>& value) {
  values[key] = value;
  writes.push_back(key);
}

void MemoryScreens::set(std::vector<Screen> screens) {
  screens_ = std::move(screens);
  changes_.notifyObservers();
}

void MemoryPointer::report() {
  if (wantsActivity_) activity_.notifyObservers();
}

void MemoryPointer::move(std::optional<Point> position) {
  position_ = position;
  report();
}

void MemoryPointer::press() {
  buttonDown_ = true;
  report();
}

void MemoryPointer::release() {
  buttonDown_ = false;
  report();
}

void MemoryPointer::startDrag(std::optional<std::vector<std::string>> types) {
  ++dragChangeCount_;
  dragTypes_ = std::move(types);
  report();
}

void MemoryPointer::tellDragTypes(std::vector<std::string> types) {
  dragTypes_ = std::move(types);
  report();
}

std::optional<double> MemoryAudioDevices::volume(uint32_t id, AudioScope scope) const {
  const auto found = levels.find({id, scope});
  return found == levels.end() ? std::nullopt : std::optional(std::min(found->second.volume, 1.0));
}

std::optional<bool> MemoryAudioDevices::isMuted(uint32_t id, AudioScope scope) const {
  const auto found = levels.find({id, scope});
  return found == levels.end() ? std::nullopt : std::optional(found->second.muted);
}

Subscription MemoryAudioDevices::observeLevels(
    uint32_t id, AudioScope scope, std::function<void()> onChange) {
  ++attachments;
  return levelChanges_[{id, scope}].observe(std::move(onChange));
}

void MemoryAudioDevices::plug(std::vector<AudioDevice> devices, uint32_t output, uint32_t input) {
  devices_ = std::move(devices);
  defaults_ = {{AudioScope::output, output}, {AudioScope::input, input}};
  changes_.notifyObservers();
}

void MemoryAudioDevices::turn(uint32_t id, AudioScope scope, Levels to) {
  levels[{id, scope}] = to;
  levelChanges_[{id, scope}].notifyObservers();
}

std::optional<Subscription> MemoryMediaKeys::tap(const std::vector<MediaKey>& keys, Handler handler) {
  if (!trusted) return std::nullopt;
  const auto tap = std::make_shared<Tap>(Tap{keys, std::move(handler)});
  taps_.push_back(tap);
  return Subscription(tap);
}

bool MemoryMediaKeys::send(const MediaKeyEvent& event) {
  const auto taps = taps_;
  for (const auto& weak : taps) {
    const auto tap = weak.lock();
    if (!tap || std::find(tap->keys.begin(), tap->keys.end(), event.key) == tap->keys.end()) continue;
    return tap->handler(event);
  }
  return false;
}

void MemoryPowerSources::set(std::optional<std::vector<PowerSource>> sources) {
  sources_ = std::move(sources);
  changes_.notifyObservers();
}

void MemoryPowerSources::setLowPowerMode(bool on) {
  lowPowerMode_ = on;
  modeChanges_.notifyObservers();
}

Subscription MemoryBluetoothDevices::observe(Receiver receive) {
  auto receiver = std::make_shared<Receiver>(std::move(receive));
  receivers_.push_back(receiver);
  return Subscription(receiver);
}

void MemoryBluetoothDevices::tell(BluetoothEvent event, const BluetoothDevice& device) {
  for (const auto& weak : receivers_) {
    if (const auto receiver = weak.lock()) (*receiver)(event, device);
  }
}

std::vector<CalendarEvent> MemoryCalendars::events(Date from, Date to) {
  std::vector<CalendarEvent> found;
  for (const CalendarEvent& event : events_) {
    if (event.start < to && event.end > from) found.push_back(event);
  }
  return found;
}

void MemoryCalendars::setAccess(bool access) {
  access_ = access;
  if (answer_) answer_(access);
}

void MemoryCalendars::set(std::vector<CalendarEvent> events) {
  events_ = std::move(events);
  changes_.notifyObservers();
}

Subscription MemoryForeignProcesses::watch(const ForeignProcess& process, std::function<void()> ended) {
  auto watcher = std::make_shared<std::function<void()>>(std::move(ended));
  watchers_.emplace(process.number, watcher);
  return Subscription(watcher);
}

std::vector<ForeignProcesses::Child> MemoryForeignProcesses::children(const ForeignProcess& process) {
  ++looks;
  onLook();
  return running[process.number];
}

void MemoryForeignProcesses::end(int32_t process) {
  const auto [begin, last] = watchers_.equal_range(process);
  for (auto entry = begin; entry != last; ++entry) {
    if (const auto ended = entry->second.lock()) (*ended)();
  }
}

Subscription MemoryGrowingFiles::follow(
    const FilePath& file, std::function<void(const std::string& line)> line) {
  auto follower = std::make_shared<std::function<void(const std::string&)>>(std::move(line));
  followers_.emplace(file, follower);
  return Subscription(follower);
}

void MemoryGrowingFiles::append(const FilePath& file, const std::string& line) {
  const auto [begin, last] = followers_.equal_range(file);
  for (auto entry = begin; entry != last; ++entry) {
    if (const auto follower = entry->second.lock()) (*follower)(line);
  }
}

bool MemoryGrowingFiles::isFollowed(const FilePath& file) const {
  const auto [begin, last] = followers_.equal_range(file);
  return std::any_of(begin, last, [](const auto& entry) { return !entry.second.expired(); });
}

std::optional<uint32_t> MemoryWindowActivation::windowOf(
    uint32_t told, const std::vector<int32_t>& processes) {
  for (const int32_t process : processes) {
    if (std::ranges::count(windows[process], told) > 0) return told;
  }
  for (const int32_t process : processes) {
    if (!windows[process].empty()) return windows[process].back();
  }
  return std::nullopt;
}

Subscription MemoryPermissionRequests::observe(std::function<void(const Request&)> asked) {
  const auto kept = std::make_shared<std::function<void(const Request&)>>(std::move(asked));
  asked_ = kept;
  return Subscription(kept);
}

Subscription MemoryPermissionRequests::observeEnd(std::function<void(uint64_t)> gone) {
  const auto kept = std::make_shared<std::function<void(uint64_t)>>(std::move(gone));
  gone_ = kept;
  return Subscription(kept);
}

void MemoryPermissionRequests::ask(const Request& request) const {
  if (const auto asked = asked_.lock()) (*asked)(request);
}

void MemoryPermissionRequests::end(uint64_t number) const {
  if (const auto gone = gone_.lock()) (*gone)(number);
}

}  // namespace tarnwick
