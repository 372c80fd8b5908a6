#include "app/TakeSnapshots.h"

#include <QEventLoop>
#include <QGuiApplication>
#include <cstdio>
#include <cstdlib>

#include "linux/process/Module.h"
#include "linux/process/QtScheduler.h"
#include "linux/sound/PulseAudioDevices.h"
#include "showcase/Snapshot.h"

namespace tarnwick {
namespace {

constexpr double longestWait = 0.5;

/// Looks for the machine's devices while the other scenes are being rendered.
class DeviceSearch {
 public:
  DeviceSearch() {
    devices_.onAnswer = [this] { finish(); };
    devices_.connect();
  }

  /// The devices, once they are known, but not later than half a second after the beginning.
  void plugInto(MemoryAudioDevices& stage) {
    if (!finished_) waiting_.exec();
    using enum AudioScope;
    for (const AudioScope scope : {output, input}) {
      const uint32_t id = devices_.defaultDevice(scope);
      stage.levels[{id, scope}] = {
          devices_.volume(id, scope).value_or(0), devices_.isMuted(id, scope).value_or(false)};
    }
    stage.plug(devices_.all(), devices_.defaultDevice(output), devices_.defaultDevice(input));
  }

 private:
  void finish() {
    finished_ = true;
    waiting_.quit();
  }

  QtScheduler scheduler_;
  PulseAudioDevices devices_{scheduler_, [] { return loadPulseModule(moduleFolder()); }};
  bool finished_ = false;
  QEventLoop waiting_;
  const Task end_ = scheduler_.after(longestWait, [this] { finish(); });
};

}  // namespace

int takeSnapshots(const std::string& folder) {
  ::setenv("QT_QPA_PLATFORM", "offscreen", 1);
  char name[] = "Tarnwick";
  char* arguments[] = {name, nullptr};
  int count = 1;
  QGuiApplication::setDesktopSettingsAware(false);
  const QGuiApplication application(count, arguments);
  DeviceSearch search;
  const auto error = Snapshot::run(folder, [&search](MemoryAudioDevices& stage) { search.plugInto(stage); });
  if (error) {
    std::fprintf(
        stderr, "Tarnwick: could not write pictures into %s: %s\n", folder.c_str(), error.message().c_str());
  }
  // A daemon that hangs is not waited for.
  std::_Exit(error ? EXIT_FAILURE : EXIT_SUCCESS);
}

}  // namespace tarnwick
