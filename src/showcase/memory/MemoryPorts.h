#pragma once
#include <cmath>
#include <map>
#include <set>
#include <string>
#include <variant>
#include <vector>

#include "base/UserDefaults.h"
#include "platform/Applications.h"
#include "platform/AudioDevices.h"
#include "platform/BluetoothDevices.h"
#include "platform/Calendars.h"
#include "platform/Desktop.h"
#include "platform/DesktopAppearance.h"
#include "platform/DeviceSharing.h"
#include "platform/DisplayBrightness.h"
#include "platform/FileIcons.h"
#include "platform/FileManager.h"
#include "platform/Folders.h"
#include "platform/ForeignProcesses.h"
#include "platform/GrowingFiles.h"
#include "platform/HapticPerformer.h"
#include "platform/ImageDecoder.h"
#include "platform/MediaKeys.h"
#include "platform/NotificationCenter.h"
#include "platform/PermissionRequests.h"
#include "platform/Pointer.h"
#include "platform/PowerSources.h"
#include "platform/Screens.h"
#include "platform/SoundPlayer.h"
#include "platform/SystemLog.h"
#include "platform/WindowActivation.h"
#include "platform/WindowList.h"
#include "showcase/memory/MemoryProcesses.h"
#include "showcase/memory/VirtualScheduler.h"

namespace tarnwick {

/// Delivers at once what a test posts.
class MemoryNotificationCenter : public NotificationCenter {
 public:
  Subscription observe(const std::string& name, std::function<void(const StringMap&)> receive) override;
  void post(const std::string& name, const StringMap& payload);

 private:
  std::multimap<std::string, std::weak_ptr<std::function<void(const StringMap&)>>> observers_;
};

/// Values of every type that a real store might hold.
class MemoryUserDefaults : public UserDefaults {
 public:
  std::optional<bool> boolean(const std::string& key) const override;
  std::optional<std::vector<std::string>> strings(const std::string& key) const override;
  void set(const std::string& key, bool value) override;
  void set(const std::string& key, const std::vector<std::string>& value) override;

  std::map<std::string, std::variant<bool, double, std::string, std::vector<std::string>>> values;
  /// The key of each write, in order.
  std::vector<std::string> writes;
};

class MemoryScreens : public Screens {
 public:
  std::vector<Screen> all() const override { return screens_; }
  Subscription observe(std::function<void()> onChange) override {
    return changes_.observe(std::move(onChange));
  }
  void set(std::vector<Screen> screens);

 private:
  std::vector<Screen> screens_;
  ObservableObject changes_;
};

/// A pointer that a test moves. It reports activity exactly as the port says: only while somebody wants it.
class MemoryPointer : public Pointer {
 public:
  std::optional<Point> position() const override { return position_; }
  bool isKnownEverywhere() const override { return knownEverywhere; }
  bool buttonDown() const override { return buttonDown_; }
  int dragChangeCount() const override { return dragChangeCount_; }
  std::optional<std::vector<std::string>> dragTypes() const override { return dragTypes_; }
  Subscription observe(std::function<void()> onActivity) override {
    return activity_.observe(std::move(onActivity));
  }
  void setWantsActivity(bool wants) override { wantsActivity_ = wants; }

  bool wantsActivity() const { return wantsActivity_; }
  void move(std::optional<Point> position);
  void press();
  void release();
  /// The held button starts a drag that offers these types; none: the types are not known yet.
  void startDrag(std::optional<std::vector<std::string>> types);
  void tellDragTypes(std::vector<std::string> types);
  /// Says that something may have happened.
  void report();

  bool knownEverywhere = true;

 private:
  std::optional<Point> position_ = Point{-10'000, -10'000};
  bool buttonDown_ = false;
  int dragChangeCount_ = 0;
  std::optional<std::vector<std::string>> dragTypes_;
  bool wantsActivity_ = false;
  ObservableObject activity_;
};

class MemoryWindowList : public WindowList {
 public:
  std::optional<std::vector<WindowInfo>> onScreen() override { return windows; }
  int64_t ownProcess() const override { return 4242; }
  Subscription observe(std::function<void()> onChange) override {
    return changes_.observe(std::move(onChange));
  }

  void set(std::optional<std::vector<WindowInfo>> changed) {
    windows = std::move(changed);
    changes_.notifyObservers();
  }

  std::optional<std::vector<WindowInfo>> windows = std::vector<WindowInfo>{};

 private:
  ObservableObject changes_;
};

class MemorySoundPlayer : public SoundPlayer {
 public:
  void play(Sound sound) override { played.push_back(sound); }
  std::vector<Sound> played;
};

class MemoryHapticPerformer : public HapticPerformer {
 public:
  void performAlignment() override { ++taps; }
  int taps = 0;
};

/// Devices that a test plugs in, and whose levels it changes as another program would.
class MemoryAudioDevices : public AudioDevices {
 public:
  struct Levels {
    double volume = 0;
    bool muted = false;
  };

  std::vector<AudioDevice> all() const override { return devices_; }
  uint32_t defaultDevice(AudioScope scope) const override { return defaults_.at(scope); }
  void setDefaultDevice(AudioScope scope, uint32_t id) override { defaultWrites.emplace_back(scope, id); }
  std::optional<double> volume(uint32_t id, AudioScope scope) const override;
  void setVolume(uint32_t id, AudioScope scope, double volume) override {
    levels[{id, scope}].volume = volume;
  }
  std::optional<bool> isMuted(uint32_t id, AudioScope scope) const override;
  void setMuted(uint32_t id, AudioScope scope, bool muted) override { levels[{id, scope}].muted = muted; }
  Subscription observe(std::function<void()> onChange) override { return changes_.observe(onChange); }
  Subscription observeLevels(uint32_t id, AudioScope scope, std::function<void()> onChange) override;

  void plug(std::vector<AudioDevice> devices, uint32_t output, uint32_t input);
  void turn(uint32_t id, AudioScope scope, Levels to);

  std::map<std::pair<uint32_t, AudioScope>, Levels> levels;
  std::vector<std::pair<AudioScope, uint32_t>> defaultWrites;
  /// How often listeners to levels were attached.
  int attachments = 0;

 private:
  std::vector<AudioDevice> devices_;
  std::map<AudioScope, uint32_t> defaults_{{AudioScope::output, 0}, {AudioScope::input, 0}};
  ObservableObject changes_;
  std::map<std::pair<uint32_t, AudioScope>, ObservableObject> levelChanges_;
};

/// Keys that a test presses, and that another program may hold.
class MemoryMediaKeys : public MediaKeys {
 public:
  bool isTrusted(const std::vector<MediaKey>&) override { return trusted; }
  void requestTrust() override { ++requests; }
  std::optional<Subscription> tap(const std::vector<MediaKey>& keys, Handler handler) override;
  Subscription observe(std::function<void()> onChange) override {
    return changes_.observe(std::move(onChange));
  }

  /// @return whether the key was caught and swallowed
  bool send(const MediaKeyEvent& event);
  /// Says that keys have moved or may have come free.
  void tellChange() { changes_.notifyObservers(); }

  bool trusted = true;
  int requests = 0;

 private:
  struct Tap {
    std::vector<MediaKey> keys;
    Handler handler;
  };
  std::vector<std::weak_ptr<Tap>> taps_;
  ObservableObject changes_;
};

class MemoryDisplayBrightness : public DisplayBrightness {
 public:
  std::optional<double> current() override { return value; }
  void set(double brightness) override { value = std::round(brightness / least) * least; }
  double unit() const override { return least; }
  Subscription observe(std::function<void()> onChange) override {
    return changes_.observe(std::move(onChange));
  }
  Subscription follow(std::function<void()> onChange) override { return turns_.observe(std::move(onChange)); }

  void plug(std::optional<double> brightness) {
    value = brightness;
    changes_.notifyObservers();
  }
  /// Changes it as another program would.
  void turn(double to) {
    value = to;
    turns_.notifyObservers();
  }
  bool isFollowed() const { return turns_.isObserved(); }

  std::optional<double> value = 0.5;
  double least = 1.0 / 1024;

 private:
  ObservableObject changes_, turns_;
};

/// A battery and a charger that a test sets.
class MemoryPowerSources : public PowerSources {
 public:
  std::optional<std::vector<PowerSource>> all() const override { return sources_; }
  bool isLowPowerModeEnabled() const override { return lowPowerMode_; }
  Subscription observe(std::function<void()> onChange) override {
    return changes_.observe(std::move(onChange));
  }
  Subscription observeLowPowerMode(std::function<void()> onChange) override {
    return modeChanges_.observe(std::move(onChange));
  }

  void set(std::optional<std::vector<PowerSource>> sources);
  void setLowPowerMode(bool on);

 private:
  std::optional<std::vector<PowerSource>> sources_;
  bool lowPowerMode_ = false;
  ObservableObject changes_;
  ObservableObject modeChanges_;
};

class MemoryBluetoothDevices : public BluetoothDevices {
 public:
  Subscription observe(Receiver receive) override;
  void tell(BluetoothEvent event, const BluetoothDevice& device);

 private:
  std::vector<std::weak_ptr<Receiver>> receivers_;
};

/// Calendars that a test fills. Access is not given before the test does.
class MemoryCalendars : public Calendars {
 public:
  void requestAccess(std::function<void(bool)> then) override { answer_ = std::move(then); }
  bool hasAccess() const override { return access_; }
  std::vector<CalendarEvent> events(Date from, Date to) override;
  Subscription observe(std::function<void()> onChange) override {
    return changes_.observe(std::move(onChange));
  }

  bool isAsked() const { return answer_ != nullptr; }
  void setAccess(bool access);
  void set(std::vector<CalendarEvent> events);

 private:
  std::vector<CalendarEvent> events_;
  std::function<void(bool)> answer_;
  bool access_ = false;
  ObservableObject changes_;
};

/// Files that somebody makes. Each has a plain square as its icon, whose colour is its version.
class MemoryFileIcons : public FileIcons {
 public:
  std::optional<uint64_t> version(const FilePath& file) override;
  std::optional<Image> icon(const FilePath& file) override;
  void refresh() override {}

  /// By path. What is not here is gone.
  std::map<FilePath, uint64_t> versions;
  /// Each look, in order.
  std::vector<FilePath> asked;
};

class MemoryFileManager : public FileManager {
 public:
  void open(const FilePath& file) override { opened.push_back(file); }
  void reveal(const FilePath& file) override { revealed.push_back(file); }

  std::vector<FilePath> opened, revealed;
};

class MemoryDeviceSharing : public DeviceSharing {
 public:
  std::vector<SharingTarget> targets() override { return devices; }
  void refresh() override {}
  void send(const std::vector<FilePath>& files, const std::string& target) override {
    sent.emplace_back(target, files);
  }

  std::vector<SharingTarget> devices;
  std::vector<std::pair<std::string, std::vector<FilePath>>> sent;
};

class MemoryForeignProcesses : public ForeignProcesses {
 public:
  Subscription watch(const ForeignProcess& process, std::function<void()> ended) override;
  std::vector<Child> children(const ForeignProcess& process) override;
  std::vector<int32_t> ancestors(const ForeignProcess& process) override { return families[process.number]; }
  std::string variable(const ForeignProcess& process, const std::string& name) override {
    return variables[{process.number, name}];
  }
  bool isOwnSocket(const FilePath& path) override { return sockets.contains(path); }
  /// It ends, unless nobody watches it.
  void end(int32_t process);

  /// By the number of the parent.
  std::map<int32_t, std::vector<Child>> running;
  std::map<int32_t, std::vector<int32_t>> families;
  std::map<std::pair<int32_t, std::string>, std::string> variables;
  std::set<FilePath> sockets;
  /// How often was looked.
  int looks = 0;
  std::function<void()> onLook = [] {};

 private:
  std::multimap<int32_t, std::weak_ptr<std::function<void()>>> watchers_;
};

class MemoryGrowingFiles : public GrowingFiles {
 public:
  Subscription follow(const FilePath& file, std::function<void(const std::string& line)> line) override;
  /// Nothing until somebody writes.
  Subscription followWhole(const FilePath& file, std::function<void(const std::string& text)> told) override {
    return follow(file, std::move(told));
  }
  /// A line, or the whole of a file that is written anew.
  void append(const FilePath& file, const std::string& line);
  bool isFollowed(const FilePath& file) const;

 private:
  std::multimap<FilePath, std::weak_ptr<std::function<void(const std::string&)>>> followers_;
};

/// Windows by the process that owns them.
class MemoryWindowActivation : public WindowActivation {
 public:
  bool bringForward(const std::vector<std::string>&) override { return false; }
  std::optional<uint32_t> windowOf(uint32_t told, const std::vector<int32_t>& processes) override;
  void bringForward(uint32_t window) override { broughtForward.push_back(window); }

  std::map<int32_t, std::vector<uint32_t>> windows;
  std::vector<uint32_t> broughtForward;
};

class MemoryPermissionRequests : public PermissionRequests {
 public:
  Subscription observe(std::function<void(const Request&)> asked) override;
  Subscription observeEnd(std::function<void(uint64_t)> gone) override;
  void answer(uint64_t number, const PermissionAnswer& answer) override { answers.emplace(number, answer); }
  /// A program asks.
  void ask(const Request& request) const;
  /// It ends.
  void end(uint64_t number) const;

  /// The first one counts.
  std::map<uint64_t, PermissionAnswer> answers;

 private:
  std::weak_ptr<std::function<void(const Request&)>> asked_;
  std::weak_ptr<std::function<void(uint64_t)>> gone_;
};

/// A whole desktop in memory but for its folders, with a clock that stands still until somebody moves it.
struct MemoryPorts {
  /// `folders` must outlive the rest.
  explicit MemoryPorts(Folders& folders) : givenFolders(folders) {}

  Folders& givenFolders;
  VirtualScheduler scheduler;
  MemoryNotificationCenter notifications;
  MemoryUserDefaults defaults;
  MemoryScreens screens;
  MemoryPointer pointer;
  MemoryWindowList windows;
  MemorySoundPlayer sounds;
  MemoryHapticPerformer haptics;
  MemoryChildProcesses processes;
  MemoryApplications applications;
  MemoryImageDecoder images;
  MemorySystemLog log;
  MemoryAudioDevices audioDevices;
  MemoryMediaKeys mediaKeys;
  MemoryDisplayBrightness brightness;
  MemoryPowerSources powerSources;
  MemoryBluetoothDevices bluetooth;
  MemoryCalendars calendars;
  DesktopAppearance appearance;
  MemoryFileIcons fileIcons;
  MemoryFileManager fileManager;
  MemoryDeviceSharing sharing;
  MemoryForeignProcesses foreignProcesses;
  MemoryGrowingFiles growingFiles;
  MemoryWindowActivation activation;
  MemoryPermissionRequests permissions;

  Desktop ports{.scheduler = scheduler,
      .notifications = notifications,
      .defaults = defaults,
      .folders = givenFolders,
      .screens = screens,
      .windows = windows,
      .sounds = sounds,
      .haptics = haptics,
      .processes = processes,
      .applications = applications,
      .images = images,
      .log = log,
      .audioDevices = audioDevices,
      .mediaKeys = mediaKeys,
      .brightness = brightness,
      .powerSources = powerSources,
      .bluetooth = bluetooth,
      .calendars = calendars,
      .appearance = appearance,
      .fileIcons = fileIcons,
      .fileManager = fileManager,
      .sharing = sharing,
      .foreignProcesses = foreignProcesses,
      .growingFiles = growingFiles,
      .activation = activation,
      .permissions = permissions};
};

}  // namespace tarnwick
