#include "linux/bus/BluezDevices.h"

#include <QDBusArgument>
#include <QDBusObjectPath>

namespace tarnwick {
namespace {

constexpr auto bluez = "org.bluez";
constexpr auto deviceInterface = "org.bluez.Device1";
constexpr auto batteryInterface = "org.bluez.Battery1";
constexpr auto objectManager = "org.freedesktop.DBus.ObjectManager";
constexpr auto propertiesInterface = "org.freedesktop.DBus.Properties";

using Interfaces = QMap<QString, QVariantMap>;
using Objects = QMap<QDBusObjectPath, Interfaces>;

/// A device without a name gets its address for one, which tells the user nothing.
std::string nameOf(const QVariantMap& device) {
  const QString alias = device["Alias"].toString(), name = device["Name"].toString();
  const QString address = device["Address"].toString();
  const bool aliasIsAddress = name.isEmpty() && QString(alias).replace('-', ':') == address;
  return (alias.isEmpty() || aliasIsAddress ? name : alias).toStdString();
}

/// By the numbers that the Bluetooth standard assigns. Low-energy devices have no class, but they tell
/// otherwise whether they play sound.
bool isAudio(const QVariantMap& device) {
  constexpr unsigned audioClass = 4;
  const unsigned majorClass = (device["Class"].toUInt() >> 8) & 0x1f;
  if (majorClass != 0) return majorClass == audioClass;
  const unsigned category = device["Appearance"].toUInt() >> 6;
  return category == 0x21 || category == 0x22 || category == 0x25 || category == 0x29 ||
         device["Icon"].toString().startsWith("audio-");
}

bool isConnected(const QVariantMap& device) { return device["Connected"].toBool(); }

bool belongsTo(const QString& batteryPath, const QString& devicePath) {
  return batteryPath == devicePath || batteryPath.startsWith(devicePath + '/');
}

}  // namespace

BluezDevices::BluezDevices(MessageBus& bus) : service_(bus, bluez) {
  service_.listen("", objectManager, "InterfacesAdded");
  service_.listen("", objectManager, "InterfacesRemoved");
  for (const char* interface : {deviceInterface, batteryInterface}) {
    service_.listen("", propertiesInterface, "PropertiesChanged", interface);
  }
  service_.onAppear = [this] { fetch(); };
  service_.onVanish = [this] {
    devices_.clear();
    batteries_.clear();
  };
  service_.onSignal = [this](const QDBusMessage& signal) { receive(signal); };
  service_.follow();
}

void BluezDevices::fetch() {
  service_.call("/", objectManager, "GetManagedObjects", {}, [this](const QDBusMessage& reply) {
    devices_.clear();
    batteries_.clear();
    const auto objects = qdbus_cast<Objects>(reply.arguments().value(0));
    for (auto object = objects.begin(); object != objects.end(); ++object) {
      const Interfaces& interfaces = object.value();
      const QString path = object.key().path();
      if (interfaces.contains(deviceInterface)) setDevice(path, interfaces[deviceInterface], true);
      if (interfaces.contains(batteryInterface)) setBattery(path, interfaces[batteryInterface], true);
    }
  });
}

void BluezDevices::receive(const QDBusMessage& signal) {
  const QVariantList arguments = signal.arguments();
  if (signal.member() == "PropertiesChanged") {
    const QString interface = arguments.value(0).toString();
    const auto changed = qdbus_cast<QVariantMap>(arguments.value(1));
    // Those that are not known yet come with the first answer.
    if (interface == deviceInterface && devices_.contains(signal.path()))
      setDevice(signal.path(), changed, false);
    if (interface == batteryInterface) setBattery(signal.path(), changed, false);
    return;
  }
  const QString path = arguments.value(0).value<QDBusObjectPath>().path();
  if (signal.member() == "InterfacesRemoved")
    return remove(path, qdbus_cast<QStringList>(arguments.value(1)));
  const auto added = qdbus_cast<Interfaces>(arguments.value(1));
  // The battery first: a device that comes connected is told of with its level.
  if (added.contains(batteryInterface)) setBattery(path, added[batteryInterface], false);
  if (added.contains(deviceInterface)) setDevice(path, added[deviceInterface], false);
}

void BluezDevices::setDevice(const QString& path, const QVariantMap& changed, bool silently) {
  QVariantMap& device = devices_[path];
  const bool before = isConnected(device);
  device.insert(changed);
  const bool now = isConnected(device);
  if (silently || before == now) return;
  tell(now ? BluetoothEvent::connected : BluetoothEvent::disconnected, describe(path));
}

void BluezDevices::setBattery(const QString& path, const QVariantMap& changed, bool silently) {
  if (!changed.contains("Percentage")) return;
  const int level = changed["Percentage"].toInt();
  const auto [battery, isNew] = batteries_.try_emplace(path, level);
  const bool differs = isNew || std::exchange(battery->second, level) != level;
  if (differs && !silently) tellBattery(path);
}

void BluezDevices::remove(const QString& path, const QStringList& interfaces) {
  if (interfaces.contains(batteryInterface)) batteries_.erase(path);
  if (!interfaces.contains(deviceInterface)) return;
  const auto device = devices_.find(path);
  if (device == devices_.end()) return;
  const bool wasConnected = isConnected(device->second);
  const BluetoothDevice last = describe(path);
  devices_.erase(device);
  if (wasConnected) tell(BluetoothEvent::disconnected, last);
}

BluetoothDevice BluezDevices::describe(const QString& path) const {
  const QVariantMap& properties = devices_.at(path);
  BluetoothDevice device{path.toStdString(), nameOf(properties), isAudio(properties), {}};
  for (const auto& [batteryPath, level] : batteries_) {
    if (belongsTo(batteryPath, path)) device.batteryLevels.push_back(level);
  }
  return device;
}

void BluezDevices::tellBattery(const QString& batteryPath) {
  for (const auto& [path, device] : devices_) {
    if (!belongsTo(batteryPath, path)) continue;
    if (isConnected(device)) tell(BluetoothEvent::batteryChanged, describe(path));
    return;
  }
}

Subscription BluezDevices::observe(Receiver receive) {
  auto receiver = std::make_shared<Receiver>(std::move(receive));
  receivers_.push_back(receiver);
  return Subscription(receiver);
}

void BluezDevices::tell(BluetoothEvent event, const BluetoothDevice& device) {
  std::erase_if(receivers_, [](const auto& receiver) { return receiver.expired(); });
  const auto receivers = receivers_;  // a receiver may add or remove others
  for (const auto& weak : receivers) {
    if (const auto receiver = weak.lock()) (*receiver)(event, device);
  }
}

}  // namespace tarnwick
