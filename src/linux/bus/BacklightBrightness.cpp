#include "linux/bus/BacklightBrightness.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>

namespace tarnwick {
namespace {

constexpr int replyTimeout = 5'000;  // milliseconds

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
  const bool isBuiltIn = name.find("-eDP") != std::string::npos || name.find("-LVDS") != std::string::npos ||
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

std::optional<long> BacklightBrightness::present() const {
  if (wanted_ && panel_) return wanted_;
  for (const bool searched : {false, true}) {
    if (searched) panel_ = findPanel();
    if (!panel_) continue;
    if (const auto raw = read<long>(folder_ + '/' + panel_->name + "/brightness")) return raw;
  }
  return std::nullopt;
}

std::optional<double> BacklightBrightness::current() const {
  const auto raw = present();
  if (!raw) return std::nullopt;
  return std::clamp(static_cast<double>(*raw) / static_cast<double>(panel_->maximum), 0.0, 1.0);
}

void BacklightBrightness::set(double brightness) {
  const auto now = present();
  if (!now) return;
  const double next = std::clamp(brightness, 0.0, 1.0);
  const auto maximum = static_cast<double>(panel_->maximum);
  long raw = std::lround(next * maximum);
  // A step that is less than one unit is one unit.
  const double before = static_cast<double>(*now) / maximum;
  if (raw == *now && next > before) ++raw;
  if (raw == *now && next < before) --raw;
  if (raw == *now) return;
  wanted_ = raw;
  if (!writing_) write();
}

void BacklightBrightness::write() {
  const auto& connection = bus_.connection();
  if (!connection) return wanted_.reset();
  writing_ = true;
  auto call = QDBusMessage::createMethodCall("org.freedesktop.login1", "/org/freedesktop/login1/session/auto",
                                             "org.freedesktop.login1.Session", "SetBrightness");
  const long raw = *wanted_;
  call << "backlight" << QString::fromStdString(panel_->name) << static_cast<uint>(raw);
  auto* reply = new QDBusPendingCallWatcher(connection->asyncCall(call, replyTimeout), &context_);
  QObject::connect(reply, &QDBusPendingCallWatcher::finished, &context_, [this, reply, raw] {
    reply->deleteLater();
    written(raw);
  });
}

void BacklightBrightness::written(long raw) {
  writing_ = false;
  // What was wanted meanwhile goes out in one.
  if (wanted_ != raw) return write();
  wanted_.reset();
}

}  // namespace tarnwick
