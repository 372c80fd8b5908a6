#include "showcase/Snapshot.h"

#include <QBuffer>
#include <QImage>
#include <QThreadPool>
#include <array>
#include <filesystem>

#include "base/AtomicFile.h"
#include "core/NotchModel.h"
#include "ui/Shape.h"
#include "ui/engine/Scene.h"
#include "ui/paint/Painter.h"
#include "views/NotchRootView.h"

namespace tarnwick::Snapshot {
namespace {

constexpr Size size{720, 230};
constexpr double pixelRatio = 1.5;
constexpr Color wallpaper{0.85, 0.85, 0.85};
/// When everything has come to rest, and what goes on moving is good to look at.
constexpr double settlingSeconds = 1.55;
constexpr double indicatorSeconds = 1.8;

/// Nothing is read from disk or written to it.
class NoFolders : public Folders {
 public:
  std::string home() const override { return "/dev/null"; }
  std::string data() const override { return "/dev/null"; }
  std::string configuration() const override { return "/dev/null"; }
  std::string caches() const override { return "/dev/null"; }
  std::string modules() const override { return "/dev/null"; }
};

struct Stage {
  NoFolders folders;
  MemoryPorts desktop{folders};
  NotchModel model{desktop.ports};
};

struct SceneSetup {
  const char* name;
  std::function<void(Stage&)> setUp;
};

void work(NotchModel& model) {
  const StringMap session{{"session_id", "a"}, {"cwd", "/x/Tarnwick"}};
  StringMap prompt = session, tool = session;
  prompt["hook_event_name"] = "UserPromptSubmit";
  tool.merge(
      StringMap{{"hook_event_name", "PreToolUse"}, {"tool_name", "Bash"}, {"tool_detail", "ninja -C build"}});
  model.claude.handle(prompt);
  model.claude.handle(tool);
}

SceneSetup indicator(const char* name, const Transient& transient) {
  return {name, [transient](Stage& stage) { stage.model.show(transient, indicatorSeconds); }};
}

SceneSetup page(const char* name, Tab tab, std::function<void(Stage&)> prepare = {}) {
  return {name, [tab, prepare = std::move(prepare)](Stage& stage) {
            if (prepare) prepare(stage);
            stage.model.debugSet(true, tab, false);
          }};
}

std::array<SceneSetup, 14> scenes(const std::function<void(MemoryAudioDevices&)>& plugIn) {
  return {{
      {"1-compact-claude", [](Stage& stage) { work(stage.model); }},
      indicator("2-hud-volume", Transient::hud(HUDKind::volume, 0.62)),
      indicator("2b-hud-loud", Transient::hud(HUDKind::volume, 0.9)),
      indicator("2c-hud-mid", Transient::hud(HUDKind::volume, 0.55)),
      indicator("3-power", Transient::power(true, 76)),
      indicator("4-device", Transient::device("AirPods Pro", "airpodspro", 84, true)),
      {"5-banner",
          [](Stage& stage) {
            stage.model.present(
                {.icon = "checkmark.circle.fill",
                    .tint = colors::green,
                    .title = "Tarnwick",
                    .subtitle = "Terminé en 2m14s",
                    .crab = CrabMood::happy},
                5);
          }},
      {"0-peek", [](Stage& stage) { stage.model.debugSet(false, Tab::home, true); }},
      page("6-home", Tab::home, [](Stage& stage) { stage.model.media.debugFill(); }),
      {"6b-compact-media", [](Stage& stage) { stage.model.media.debugFill(); }},
      page("7-claude", Tab::claude, [](Stage& stage) { work(stage.model); }),
      page("8-tray", Tab::tray),
      page("9-notes", Tab::notes),
      // The devices may take some time to be found.
      page("6c-audio", Tab::audio,
          [plugIn](Stage& stage) {
            plugIn(stage.desktop.audioDevices);
            stage.model.audio.start();
          }),
  }};
}

QImage render(const SceneSetup& setup) {
  Stage stage;
  setup.setUp(stage);
  const ui::View root =
      notchRootView(stage.model, [] {})
          .frame({.width = size.width, .height = size.height})
          .background(ui::Rectangle().fill(wallpaper));
  ui::Scene scene(stage.desktop.scheduler, size, root, pixelRatio);
  scene.frame();
  stage.desktop.scheduler.advance(settlingSeconds);
  scene.frame();
  return ui::picture(scene).convertToFormat(QImage::Format_RGB888);
}

std::error_code write(const std::string& path, const QImage& image) {
  QBuffer file;
  file.open(QIODevice::WriteOnly);
  if (!image.save(&file, "PNG")) return std::make_error_code(std::errc::io_error);
  return writeFileAtomically(path, {file.data().constData(), static_cast<size_t>(file.size())});
}

}  // namespace

std::error_code run(const std::string& folder, const std::function<void(MemoryAudioDevices&)>& plugIn) {
  std::error_code error;
  std::filesystem::create_directories(folder, error);
  if (error) return error;
  const auto all = scenes(plugIn);
  std::array<std::error_code, all.size()> failures;
  // Encoding takes as long as drawing does.
  QThreadPool encoders;
  for (size_t i = 0; i < all.size(); ++i) {
    encoders.start([image = render(all[i]), path = folder + "/" + all[i].name + ".png",
                       &failure = failures[i]] { failure = write(path, image); });
  }
  encoders.waitForDone();
  const auto failed = std::ranges::find_if(failures, [](const auto& each) { return bool(each); });
  return failed == failures.end() ? std::error_code() : *failed;
}

}  // namespace tarnwick::Snapshot
