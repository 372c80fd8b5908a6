#include "linux/bus/BacklightBrightness.h"

#include "linux/bus/BacklightWatch.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>

namespace tarnwick {
namespace {

constexpr auto session = "org.freedesktop.login1.Session";

template<typename T>
std::optional<T> read(const std::filesystem::path& file) {
  T value;
  std::ifstream stream(file);
  return stream >> value ? std::optional(value) : std::nullopt;
}

/// The less, the likelier this is the interface to the built-in panel. Firmware knows best how to drive it;
/// what drives the hardware itself may also belong to a monitor.
int rank(const std::filesystem::path& panel) {
  const std::string type = read<std::string>(panel / "type").value_or("");
  if (type == "firmware") return 0;
  if (type == "platform") return 1;
  std::error_code error;
  const auto connector = std::filesystem::canonical(panel / "device", error);
  const std::string name = connector.filename();
  const bool isBuiltIn =
      name.find("-eDP") != std::string::npos || name.find("-LVDS") != std::string::npos ||
      name.find("-DSI") != std::string::npos;
  if (!isBuiltIn) return 4;
  // Of two graphics cards one drives the panel.
  return read<std::string>(connector / "enabled") == "enabled" ? 2 : 3;
}

}  // namespace

std::optional<BacklightBrightness::Panel> BacklightBrightness::findPanel() const {
  std::error_code error;
  std::optional<std::pair<int, std::string>> best;
  Panel found;
  for (const auto& entry : std::filesystem::directory_iterator(folder_, error)) {
    const long maximum = read<long>(entry.path() / "max_brightness").value_or(0);
    if (maximum <= 0) continue;
    const std::pair candidate(rank(entry.path()), entry.path().filename().string());
    if (best && *best < candidate) continue;
    best = candidate;
    found = {candidate.second, maximum};
  }
  return best ? std::optional(found) : std::nullopt;
}

BacklightBrightness::BacklightBrightness(Scheduler& scheduler, MessageBus& bus, std::string folder)
    : bus_(bus),
      loginDaemon_(bus, "org.freedesktop.login1"),
      folder_(std::move(folder)),
      pace_(scheduler, [this] { write(); }) {
  loginDaemon_.onAppear = [this] { tryWriting(); };
  loginDaemon_.onVanish = [this] {
    writing_ = false;
    setWritable(false);
  };
  // The session may have come to the foreground.
  loginDaemon_.onSignal = [this](const QDBusMessage&) {
    // A refusal that is still under way was decided before.
    retries_ = writing_;
    tryWriting();
  };
  loginDaemon_.listen({}, "org.freedesktop.DBus.Properties", "PropertiesChanged", session);
  loginDaemon_.follow();
}

std::optional<long> BacklightBrightness::present() {
  if (wanted_ && panel_) return wanted_;
  for (const bool searched : {false, true}) {
    if (searched) panel_ = findPanel();
    if (!panel_) continue;
    if (const auto raw = read<long>(folder_ + '/' + panel_->name + "/brightness")) return raw;
  }
  return std::nullopt;
}

std::optional<double> BacklightBrightness::current() {
  const auto raw = present();
  if (!raw) return std::nullopt;
  if (!writable_) {
    tryWriting();
    return std::nullopt;
  }
  return std::clamp(static_cast<double>(*raw) / static_cast<double>(panel_->maximum), 0.0, 1.0);
}

void BacklightBrightness::set(double brightness) {
  const auto now = present();
  if (!now || !writable_) return;
  const long raw = std::lround(std::clamp(brightness, 0.0, 1.0) * static_cast<double>(panel_->maximum));
  if (raw == *now) return;
  wanted_ = raw;
  pace_.request();
}

Subscription BacklightBrightness::follow(std::function<void()> onChange) {
  if (!present()) return {};
  return Subscription(std::make_shared<BacklightWatch>(folder_ + '/' + panel_->name, std::move(onChange)));
}

void BacklightBrightness::tryWriting() {
  if (writable_ || writing_ || !bus_.connection()) return;
  wanted_ = present();
  write();
}

/// Gives the panel what is wanted, unless it is just being given something: then what is wanted when that is
/// done.
void BacklightBrightness::write() {
  if (writing_ || !wanted_) return;
  writing_ = true;
  const long raw = *wanted_;
  loginDaemon_.call(
      "/org/freedesktop/login1/session/auto", session, "SetBrightness",
      {"backlight", QString::fromStdString(panel_->name), static_cast<uint>(raw)},
      [this, raw](const QDBusMessage&) {
        writing_ = false;
        setWritable(true);
        if (wanted_ == raw) wanted_.reset();
        if (wanted_) pace_.request();
      },
      [this](const QDBusMessage&) {
        writing_ = false;
        setWritable(false);
        if (std::exchange(retries_, false)) tryWriting();
      });
}

void BacklightBrightness::setWritable(bool writable) {
  if (!writable) wanted_.reset();
  if (std::exchange(writable_, writable) != writable) changes_.notifyObservers();
}

}  // namespace tarnwick
