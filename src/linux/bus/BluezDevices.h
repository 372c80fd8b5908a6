#pragma once
#include <QVariantMap>
#include <map>
#include <memory>
#include <vector>

#include "linux/bus/MessageBus.h"
#include "platform/BluetoothDevices.h"

namespace tarnwick {

/// The devices that BlueZ knows. Those that are connected when it is found are not told of.
class BluezDevices : public BluetoothDevices {
 public:
  explicit BluezDevices(MessageBus& bus);
  Subscription observe(Receiver receive) override;

 private:
  void fetch();
  void receive(const QDBusMessage& signal);
  void setDevice(const QString& path, const QVariantMap& changed, bool silently);
  void setBattery(const QString& path, const QVariantMap& changed, bool silently);
  void remove(const QString& path, const QStringList& interfaces);

  BluetoothDevice describe(const QString& path) const;
  void tell(BluetoothEvent event, const BluetoothDevice& device);
  void tellBattery(const QString& batteryPath);

  BusService service_;
  /// By object path: the properties of all devices, and the levels of all batteries.
  std::map<QString, QVariantMap> devices_;
  std::map<QString, int> batteries_;
  std::vector<std::weak_ptr<Receiver>> receivers_;
};

}  // namespace tarnwick
