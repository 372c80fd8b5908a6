#include "linux/bus/DesktopDeviceSharing.h"

#include <QDBusArgument>
#include <QProcess>
#include <QStandardPaths>
#include <algorithm>

#include "base/DisplayText.h"
#include "linux/files/FileList.h"

namespace tarnwick {
namespace {

// As KDE Connect's daemon describes itself on the bus.
constexpr auto service = "org.kde.kdeconnect";
constexpr auto daemonPath = "/modules/kdeconnect";
constexpr auto daemonInterface = "org.kde.kdeconnect.daemon";
constexpr auto shareInterface = "org.kde.kdeconnect.device.share";
constexpr size_t mostDevices = 12;

constexpr const char* bluetooth = "bluetooth";
constexpr const char* bluetoothSenders[] = {"bluetooth-sendto", "blueman-sendto"};

/// The first of the programs that is there; empty: none.
QString bluetoothSender() {
  for (const char* program : bluetoothSenders) {
    if (QString path = QStandardPaths::findExecutable(program); !path.isEmpty()) return path;
  }
  return {};
}

}  // namespace

DesktopDeviceSharing::DesktopDeviceSharing(MessageBus& sessionBus) : kdeConnect_(sessionBus, service) {}

std::vector<SharingTarget> DesktopDeviceSharing::targets() {
  std::vector<SharingTarget> targets;
  for (const auto& [id, name] : devices_) targets.push_back({id, name});
  std::ranges::sort(targets, {}, &SharingTarget::name);
  if (!bluetoothSender().isEmpty()) targets.push_back({bluetooth, "Bluetooth…"});
  return targets;
}

void DesktopDeviceSharing::refresh() {
  constexpr bool reachable = true, paired = true;
  kdeConnect_.call(
      daemonPath, daemonInterface, "deviceNames", {reachable, paired},
      [this](const QDBusMessage& reply) {
        devices_.clear();
        if (reply.signature() != "a{ss}") return;
        const auto names = qdbus_cast<QMap<QString, QString>>(reply.arguments().value(0));
        for (auto it = names.begin(); it != names.end() && devices_.size() < mostDevices; ++it) {
          devices_[it.key().toStdString()] = displayText(it.value().toStdString());
        }
      },
      [this](const QDBusMessage&) { devices_.clear(); });
}

void DesktopDeviceSharing::send(const std::vector<FilePath>& files, const std::string& target) {
  QStringList words;
  if (target == bluetooth) {
    for (const FilePath& file : files) words << QString::fromStdString(file);
    const QString sender = bluetoothSender();
    if (!sender.isEmpty()) QProcess::startDetached(sender, words);
    return;
  }
  for (const FilePath& file : files) words << QString::fromStdString(uriOfFile(file));
  const QString device = QString(daemonPath) + "/devices/" + QString::fromStdString(target) + "/share";
  kdeConnect_.call(device, shareInterface, "shareUrls", {words}, [](const QDBusMessage&) {});
}

}  // namespace tarnwick
