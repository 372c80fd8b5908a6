#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QFile>

#include "linux/bus/BluezDevices.h"
#include "linux/bus/DesktopDeviceSharing.h"
#include "linux/bus/PortalAppearance.h"
#include "linux/bus/PortalShortcuts.h"
#include "linux/bus/UPowerSources.h"
#include "linux/calendar/EvolutionCalendar.h"
#include "platform/TestDesktop.h"

// The adapters of system services, against mocks of those services on a bus that plays the system's.
namespace tarnwick {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Interfaces = QMap<QString, QVariantMap>;

/// A bus, the mocks on it, and a connection to drive them.
class SystemServicesTest : public testing::Test {
 protected:
  SystemServicesTest() {
    qDBusRegisterMetaType<Interfaces>();
    startBus();
  }
  ~SystemServicesTest() override {
    qunsetenv("DBUS_SYSTEM_BUS_ADDRESS");
    if (connection) QDBusConnection::disconnectFromBus(connection->name());
  }

  void startBus() {
    const std::string path = folder.path() + "/system-bus";
    qputenv("DBUS_SYSTEM_BUS_ADDRESS", ("unix:path=" + path).c_str());
    bus = startMessageBus(path);
    static int count = 0;
    if (connection) QDBusConnection::disconnectFromBus(connection->name());
    connection = QDBusConnection::connectToBus(
        qEnvironmentVariable("DBUS_SYSTEM_BUS_ADDRESS"), QString("hand-%1").arg(++count));
  }

  std::unique_ptr<Child> startMock(const QString& name, const QString& service) {
    return startMock(QStringList{"--template", name}, service);
  }
  std::unique_ptr<Child> startMock(const QStringList& arguments, const QString& service) {
    auto mock = std::make_unique<Child>("/usr/bin/python3", QStringList{"-m", "dbusmock"} + arguments);
    EXPECT_TRUE(waitUntil([&] {
      const QDBusMessage reply = send(
          "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "NameHasOwner", {service});
      return reply.arguments().value(0).toBool();
    })) << service.toStdString();
    return mock;
  }
  /// Calls a method of a mock and waits for the answer.
  QDBusMessage send(const QString& service, const QString& path, const QString& interface,
      const QString& method, const QVariantList& arguments) {
    auto message = QDBusMessage::createMethodCall(service, path, interface, method);
    message.setArguments(arguments);
    const QDBusMessage reply = connection->call(message, QDBus::Block, 20'000);
    EXPECT_NE(reply.type(), QDBusMessage::ErrorMessage) << reply.errorMessage().toStdString();
    return reply;
  }
  void setProperty(const QString& service, const QString& path, const QString& interface,
      const QString& property, const QVariant& value) {
    send(service, path, "org.freedesktop.DBus.Properties", "Set",
        {interface, property, QVariant::fromValue(QDBusVariant(value))});
  }

  const TemporaryFolder folder;
  std::unique_ptr<Child> bus;
  std::optional<QDBusConnection> connection;
  MessageBus systemBus{TestDesktop::shared().scheduler, systemBusAddress, 0.1};
};

class UPowerSourcesTest : public SystemServicesTest {
 protected:
  static constexpr auto upower = "org.freedesktop.UPower";
  static constexpr auto profiles = "net.hadess.PowerProfiles";

  void setBattery(unsigned type, unsigned state, double percentage, bool present) {
    send(upower, "/org/freedesktop/UPower", "org.freedesktop.DBus.Mock", "SetupDisplayDevice",
        {type, state, percentage, 30.0, 60.0, 10.0, qlonglong(3600), qlonglong(0), present, "battery", 1u});
  }
  void setOnBattery(bool onBattery) {
    setProperty(upower, "/org/freedesktop/UPower", upower, "OnBattery", onBattery);
  }
  void setProfile(const char* profile) {
    setProperty(profiles, "/net/hadess/PowerProfiles", profiles, "ActiveProfile", profile);
  }
  /// Waits until the adapter tells of that battery.
  bool shows(bool isBattery, double level, bool plugged, bool charging) {
    return waitUntil([&] {
      const auto all = sources.all();
      if (!all || all->size() != 1) return false;
      const PowerSource& source = all->front();
      return source.isInternalBattery == isBattery && source.currentCapacity == level &&
             source.maxCapacity == 100 && source.onACPower == plugged && source.isCharging == charging;
    });
  }

  UPowerSources sources{systemBus};
};

TEST_F(UPowerSourcesTest, FollowsBatteryAndCharger) {
  const auto mock = startMock("upower", upower);
  setBattery(2, 1, 55.5, true);
  EXPECT_EQ(sources.all(), std::nullopt) << "before the bus is opened";
  systemBus.open();
  EXPECT_TRUE(shows(true, 55.5, true, true));

  setOnBattery(true);
  setBattery(2, 2, 54, true);
  EXPECT_TRUE(shows(true, 54, false, false));
  setBattery(3, 2, 54, true);
  EXPECT_TRUE(shows(false, 54, false, false)) << "an emergency supply";
  setBattery(2, 0, 0, false);
  EXPECT_TRUE(shows(false, 0, false, false)) << "no battery";
}

TEST_F(UPowerSourcesTest, FollowsServiceAndBusThroughHangsAndRestarts) {
  auto mock = startMock("upower", upower);
  setBattery(2, 1, 40, true);
  ASSERT_EQ(::kill(static_cast<pid_t>(mock->id()), SIGSTOP), 0);
  systemBus.open();
  const auto other = startMock("power_profiles_daemon", profiles);
  bool switched = false;
  const auto subscription = sources.observeLowPowerMode([&] { switched = true; });
  EXPECT_TRUE(waitUntil([&, next = 0]() mutable {
    setProfile(++next % 2 ? "power-saver" : "balanced");
    return switched;
  })) << "the other service is followed all the same";
  EXPECT_EQ(sources.all(), std::nullopt);
  ::kill(static_cast<pid_t>(mock->id()), SIGCONT);
  EXPECT_TRUE(shows(true, 40, true, true));

  mock.reset();
  EXPECT_TRUE(waitUntil([&] { return !sources.all(); })) << "gone";
  mock = startMock("upower", upower);
  setBattery(2, 1, 41, true);
  EXPECT_TRUE(shows(true, 41, true, true)) << "started later";
  mock.reset();
  bus->kill();
  EXPECT_TRUE(waitUntil([&] { return !sources.all(); })) << "the bus is gone";
  startBus();
  mock = startMock("upower", upower);
  setBattery(2, 1, 42, true);
  EXPECT_TRUE(shows(true, 42, true, true)) << "the bus is back";
}

TEST_F(UPowerSourcesTest, TellsOfPowerSavingOnly) {
  auto mock = startMock("power_profiles_daemon", profiles);
  setProfile("power-saver");
  std::vector<bool> switches;
  const auto subscription =
      sources.observeLowPowerMode([&] { switches.push_back(sources.isLowPowerModeEnabled()); });
  systemBus.open();
  EXPECT_TRUE(waitUntil([&] { return sources.isLowPowerModeEnabled(); }));
  EXPECT_THAT(switches, IsEmpty()) << "what was so at the start is no switch";
  for (const char* profile : {"balanced", "performance", "balanced", "power-saver"}) setProfile(profile);
  EXPECT_TRUE(waitUntil([&] { return switches.size() >= 2; }));
  EXPECT_THAT(switches, ElementsAre(false, true));

  mock.reset();
  mock = startMock("power_profiles_daemon", profiles);
  EXPECT_TRUE(waitUntil([&] { return switches.size() >= 3; })) << "it comes back balanced";
  EXPECT_FALSE(switches.back());
}

class BluezDevicesTest : public SystemServicesTest {
 protected:
  static constexpr auto bluez = "org.bluez";
  static constexpr auto device1 = "org.bluez.Device1";
  static constexpr auto battery1 = "org.bluez.Battery1";
  static constexpr auto mockInterface = "org.freedesktop.DBus.Mock";

  BluezDevicesTest() { startBluez(); }

  void startBluez() {
    mock.reset();
    mock = startMock("bluez5", bluez);
    onMock("AddAdapter", {"hci0", "laptop"});
  }
  QString onMock(const QString& method, const QVariantList& arguments) {
    return send(bluez, "/", "org.bluez.Mock", method, arguments).arguments().value(0).toString();
  }
  QString addDevice(const QString& address, const QString& alias) {
    return onMock("AddDevice", {"hci0", address, alias});
  }
  void connectDevice(const QString& address) { onMock("ConnectDevice", {"hci0", address}); }
  void disconnectDevice(const QString& address) { onMock("DisconnectDevice", {"hci0", address}); }
  void set(const QString& path, const QString& property, const QVariant& value) {
    setProperty(bluez, path, device1, property, value);
  }
  void addBattery(const QString& path, int percentage) {
    const QVariantMap properties{{"Percentage", QVariant::fromValue(static_cast<uchar>(percentage))}};
    emitSignal("InterfacesAdded", "oa{sa{sv}}",
        {QVariant::fromValue(QDBusObjectPath(path)),
            QVariant::fromValue(Interfaces{{battery1, properties}})});
  }
  void emitSignal(const QString& name, const QString& signature, const QVariantList& arguments) {
    send(bluez, "/", mockInterface, "EmitSignal",
        {"org.freedesktop.DBus.ObjectManager", name, signature, QVariant(arguments)});
  }

  void open() {
    subscription = devices.observe([this](BluetoothEvent event, const BluetoothDevice& device) {
      const char* names[] = {"connected ", "disconnected ", "battery "};
      std::string text = names[static_cast<int>(event)] + device.name;
      if (device.isAudio) text += " plays";
      for (const int level : device.batteryLevels) text += " " + std::to_string(level) + "%";
      events.push_back(text);
    });
    systemBus.open();
  }
  /// Lets a device come and go until the adapter tells of it: it has seen all that was there before.
  void waitUntilOpen() {
    addDevice("00:00:00:00:00:01", "Probe");
    EXPECT_TRUE(waitUntil([&, connected = false]() mutable {
      connected = !connected;
      connected ? connectDevice("00:00:00:00:00:01") : disconnectDevice("00:00:00:00:00:01");
      return !events.empty() && !connected;
    }));
    barrier();
    events.clear();
  }
  /// Waits until everything that the mock said has arrived.
  void barrier() {
    const int number = ++barriers;
    const QString address = QString("00:00:00:00:01:%1").arg(number, 2, 10, QChar('0'));
    const std::string mark = "connected Mark " + std::to_string(number);
    addDevice(address, QString("Mark %1").arg(number));
    connectDevice(address);
    EXPECT_TRUE(waitUntil([&] { return !events.empty() && events.back() == mark; }));
    if (!events.empty()) events.pop_back();
  }
  /// What was told since the last time.
  std::vector<std::string> told() {
    barrier();
    return std::exchange(events, {});
  }

  std::unique_ptr<Child> mock;
  BluezDevices devices{systemBus};
  Subscription subscription;
  std::vector<std::string> events;
  int barriers = 0;
};

TEST_F(BluezDevicesTest, TellsWhatComesAndGoes) {
  const QString buds = addDevice("AA:AA:AA:AA:AA:AA", "Buds");
  connectDevice("AA:AA:AA:AA:AA:AA");
  open();
  waitUntilOpen();
  EXPECT_THAT(told(), IsEmpty()) << "it was connected at the start";
  disconnectDevice("AA:AA:AA:AA:AA:AA");
  EXPECT_THAT(told(), ElementsAre("disconnected Buds"));

  set(buds, "Class", 0x240404u);
  connectDevice("AA:AA:AA:AA:AA:AA");
  send(bluez, buds, mockInterface, "AddProperty",
      {battery1, "Percentage", QVariant::fromValue(QDBusVariant(QVariant::fromValue(uchar(80))))});
  addBattery(buds, 80);
  EXPECT_THAT(told(), ElementsAre("connected Buds plays", "battery Buds plays 80%"));
  addBattery(buds + "/left", 35);
  EXPECT_THAT(told(), ElementsAre("battery Buds plays 80% 35%"));
  setProperty(bluez, buds, battery1, "Percentage", QVariant::fromValue(uchar(79)));
  setProperty(bluez, buds, battery1, "Percentage", QVariant::fromValue(uchar(79)));
  EXPECT_THAT(told(), ElementsAre("battery Buds plays 79% 35%"));

  emitSignal("InterfacesRemoved", "oas",
      {QVariant::fromValue(QDBusObjectPath(buds)), QStringList{battery1, device1}});
  EXPECT_THAT(told(), ElementsAre("disconnected Buds plays 35%"));
}

TEST_F(BluezDevicesTest, KnowsNamesAndKinds) {
  open();
  waitUntilOpen();
  const struct {
    const char *address, *alias, *property;
    QVariant value;
    const char* told;
  } cases[] = {
      {"BB:00:00:00:00:01", "Speaker", "Icon", "audio-card", "connected Speaker plays"},
      {"BB:00:00:00:00:02", "Aids", "Appearance", QVariant::fromValue(ushort(0x0a41)),
          "connected Aids plays"},
      {"BB:00:00:00:00:03", "Pad", "Class", 0x002508u, "connected Pad"},
      {"BB:00:00:00:00:04", "BB-00-00-00-00-04", "Name", "", "connected "},
      {"BB:00:00:00:00:05", "Mine", "Name", "", "connected Mine"},
      {"BB:00:00:00:00:06", "", "Name", "Factory", "connected Factory"},
  };
  for (const auto& each : cases) {
    const QString path = addDevice(each.address, each.alias);
    set(path, each.property, each.value);
    connectDevice(each.address);
    EXPECT_THAT(told(), ElementsAre(each.told)) << each.address;
  }
}

TEST_F(BluezDevicesTest, IsSilentAboutWhatARestartedServiceKnows) {
  addDevice("AA:AA:AA:AA:AA:AA", "Buds");
  open();
  waitUntilOpen();
  connectDevice("AA:AA:AA:AA:AA:AA");
  EXPECT_THAT(told(), ElementsAre("connected Buds"));
  startBluez();
  addDevice("AA:AA:AA:AA:AA:AA", "Buds");
  waitUntilOpen();
  connectDevice("AA:AA:AA:AA:AA:AA");
  EXPECT_THAT(told(), ElementsAre("connected Buds"));
}

TEST_F(SystemServicesTest, FollowsTheDesktopsAppearance) {
  constexpr auto portal = "org.freedesktop.portal.Desktop", path = "/org/freedesktop/portal/desktop",
                 settings = "org.freedesktop.portal.Settings", mockInterface = "org.freedesktop.DBus.Mock";
  const auto mock = startMock(QStringList{"--system", portal, path, settings}, portal);
  const auto add = [&](const char* name, const char* takes, const char* gives, const QString& code) {
    send(portal, path, mockInterface, "AddMethod", {settings, name, takes, gives, code});
  };
  add("ReadAll", "as", "a{sa{sv}}",
      "ret = {args[0][0]: {'accent-color': (1.0, 0.5, 0.25), 'color-scheme': dbus.UInt32(1)},"
      " 'org.gnome.desktop.interface': {'icon-theme': 'Pictures'}}");
  PortalAppearance appearance(systemBus);
  appearance.connect();
  systemBus.open();
  EXPECT_TRUE(waitUntil([&] { return appearance.prefersDark.get(); }));
  EXPECT_EQ(appearance.accentColor.get(), (Color{1, 0.5, 0.25}));
  EXPECT_EQ(appearance.iconTheme.get(), "Pictures");

  const struct {
    const char *space, *key, *value;
    std::optional<Color> accent;
    bool dark;
  } changes[] = {
      {"org.freedesktop.appearance", "accent-color", "(0.0, 0.0, 1.0)", Color{0, 0, 1}, true},
      {"org.freedesktop.appearance", "color-scheme", "dbus.UInt32(2)", Color{0, 0, 1}, false},
      {"org.gnome.desktop.interface", "color-scheme", "dbus.UInt32(1)", Color{0, 0, 1}, false},
      {"org.freedesktop.appearance", "accent-color", "(-1.0, 0.0, 0.0)", std::nullopt, false},
      {"org.freedesktop.appearance", "accent-color", "(1.0, 1.0, 1.0)", Color{1, 1, 1}, false},
      {"org.freedesktop.appearance", "accent-color", "'blue'", std::nullopt, false},
      {"org.freedesktop.appearance", "color-scheme", "dbus.UInt32(1)", std::nullopt, true},
  };
  for (const auto& each : changes) {
    add("Change", "", "",
        QString("self.EmitSignal('%1', 'SettingChanged', 'ssv', ['%2', '%3', %4])")
            .arg(settings, each.space, each.key, each.value));
    send(portal, path, settings, "Change", {});
    EXPECT_TRUE(waitUntil([&] {
      return appearance.accentColor.get() == each.accent && appearance.prefersDark == each.dark;
    })) << each.key
        << ' ' << each.value;
  }
}

/// KDE Connect's daemon with a paired phone.
class DeviceService : public QDBusVirtualObject {
 public:
  using Names = QMap<QString, QString>;
  QString introspect(const QString&) const override { return {}; }
  bool handleMessage(const QDBusMessage& message, const QDBusConnection& bus) override {
    QVariantList answer;
    if (message.member() == "deviceNames" && message.arguments() == QVariantList{true, true})
      answer << QVariant::fromValue(Names{{"phone_1", "My\nphone"}});
    if (message.member() == "shareUrls")
      shared << message.path() << message.arguments().value(0).toStringList();
    return bus.send(message.createReply(answer));
  }
  QStringList shared;
};

TEST_F(SystemServicesTest, SendsFilesToWhoIsThere) {
  // Nothing but what is in the folder can be started.
  const QByteArray programs = qgetenv("PATH");
  qputenv("PATH", folder.path().c_str());
  DesktopDeviceSharing sharing(systemBus);
  sharing.refresh();
  EXPECT_THAT(sharing.targets(), IsEmpty());
  sharing.send({"/a"}, "bluetooth");

  qDBusRegisterMetaType<DeviceService::Names>();
  DeviceService service;
  connection->registerVirtualObject("/modules/kdeconnect", &service, QDBusConnection::SubPath);
  connection->registerService("org.kde.kdeconnect");
  systemBus.open();
  EXPECT_TRUE(waitUntil([&] {
    sharing.refresh();
    return !sharing.targets().empty();
  }));
  EXPECT_THAT(sharing.targets(), ElementsAre(SharingTarget{"phone_1", "My phone"}));
  sharing.send({"/a b", "/c"}, "phone_1");
  EXPECT_TRUE(waitUntil([&] { return !service.shared.isEmpty(); }));
  EXPECT_EQ(service.shared,
      (QStringList{"/modules/kdeconnect/devices/phone_1/share", "file:///a%20b", "file:///c"}));

  const FilePath list = folder.path() + "/list";
  const FilePath sender = folder.write("blueman-sendto", "#!/bin/sh\necho \"$@\" > " + list + "\n");
  std::filesystem::permissions(sender, std::filesystem::perms(0700));
  ASSERT_EQ(sharing.targets().size(), 2u);
  sharing.send({"/a", "/c"}, sharing.targets().back().id);
  EXPECT_TRUE(waitUntil([&] { return contentsOf(list) == "/a /c\n"; }));

  connection->unregisterService("org.kde.kdeconnect");
  EXPECT_TRUE(waitUntil([&] {
    sharing.refresh();
    return sharing.targets().size() == 1;
  }));
  qputenv("PATH", programs);
}

/// A calendar service that opens no calendar.
/// The shortcuts of a desktop's portal, with a user who agrees to them while `response` is 0.
class ShortcutPortal : public QDBusVirtualObject {
 public:
  QString introspect(const QString&) const override { return {}; }
  bool handleMessage(const QDBusMessage& message, const QDBusConnection& bus) override {
    calls << message.member();
    const auto reply = [&](const QVariant& answer) { bus.send(message.createReply(answer)); };
    const QString client = message.service().mid(1).replace('.', '_');
    if (message.member() == "Get") {
      reply(QVariant::fromValue(QDBusVariant(version)));
    } else if (message.member() == "CreateSession") {
      const auto options = qdbus_cast<QVariantMap>(message.arguments().at(0));
      session = "/session/" + client + "/" + options["session_handle_token"].toString();
      answer(bus, message, options, 0, {{"session_handle", session}});
    } else if (message.member() == "BindShortcuts") {
      asked = message.signature();
      QVariantMap results;
      // What the user has agreed to is told as it was asked for, with the keys.
      results["shortcuts"] = message.arguments().at(1);
      answer(bus, message, qdbus_cast<QVariantMap>(message.arguments().at(3)), response, results);
    } else if (message.member() == "Close") {
      closed = message.path();
      bus.send(message.createReply());
    }
    return true;
  }
  void press(const QDBusConnection& bus, const QString& whose, const QString& shortcut) {
    auto signal = QDBusMessage::createSignal(
        "/org/freedesktop/portal/desktop", "org.freedesktop.portal.GlobalShortcuts", "Activated");
    signal << QVariant::fromValue(QDBusObjectPath(whose)) << shortcut << qulonglong(1) << QVariantMap();
    bus.send(signal);
  }

  uint version = 1, response = 0;
  QStringList calls;
  QString session, asked, closed;

 private:
  static void answer(const QDBusConnection& bus, const QDBusMessage& message, const QVariantMap& options,
      uint response, const QVariantMap& results) {
    const QString request = "/request/" + options["handle_token"].toString();
    bus.send(message.createReply(QVariant::fromValue(QDBusObjectPath(request))));
    auto signal = QDBusMessage::createSignal(request, "org.freedesktop.portal.Request", "Response");
    signal << response << results;
    bus.send(signal);
  }
};

TEST_F(SystemServicesTest, ShortcutsAreAskedOfThePortal) {
  ShortcutPortal portal;
  connection->registerVirtualObject("/", &portal, QDBusConnection::SubPath);
  ASSERT_TRUE(connection->registerService("org.freedesktop.portal.Desktop"));
  systemBus.open();
  ASSERT_TRUE(waitUntil([&] { return systemBus.connection().has_value(); }));
  PortalShortcuts shortcuts(systemBus);
  std::vector<std::string> presses;
  shortcuts.onPress = [&](const std::string& name) { presses.push_back(name); };
  EXPECT_THAT(portal.calls, IsEmpty()) << "not before somebody wants one";
  using State = GlobalShortcuts::Result::State;
  shortcuts.set({{"toggle", {*KeyChord::parse("Ctrl+Super+n"), "Open it"}}});
  const auto state = [&] { return shortcuts.results->at("toggle").state; };
  EXPECT_EQ(state(), State::asking);
  ASSERT_TRUE(waitUntil([&] { return state() != State::asking; }));
  EXPECT_EQ(state(), State::works);
  EXPECT_EQ(portal.asked, "oa(sa{sv})sa{sv}");
  EXPECT_TRUE(shortcuts.available);

  portal.press(*connection, "/session/of/another", "toggle");
  portal.press(*connection, portal.session, "unknown");
  portal.press(*connection, portal.session, "toggle");
  EXPECT_TRUE(waitUntil([&] { return !presses.empty(); }));
  EXPECT_THAT(presses, ElementsAre("toggle"));

  const QString before = portal.session;
  portal.response = 1;
  shortcuts.set({{"toggle", {*KeyChord::parse("Super+m"), "Open it"}}});
  ASSERT_TRUE(waitUntil([&] { return state() != State::asking; }));
  EXPECT_EQ(state(), State::refused);
  EXPECT_EQ(portal.closed, before);
  shortcuts.set({});
  EXPECT_TRUE(waitUntil([&] { return portal.closed == portal.session; }));
}

class FailingCalendarService : public QDBusVirtualObject {
 public:
  QString introspect(const QString&) const override { return {}; }
  bool handleMessage(const QDBusMessage& message, const QDBusConnection& bus) override {
    ++calls[message.member()];
    bus.send(message.member() == "OpenCalendar"
                 ? message.createReply(QVariantList{"/calendar", EvolutionCalendar::service})
                 : message.createErrorReply(QDBusError::Failed, "no"));
    return true;
  }
  std::map<QString, int> calls;
};

TEST_F(SystemServicesTest, ACalendarThatFailsLeavesNothingBehind) {
  FailingCalendarService service;
  connection->registerVirtualObject("/", &service, QDBusConnection::SubPath);
  ASSERT_TRUE(connection->registerService(EvolutionCalendar::service));
  systemBus.open();
  ASSERT_TRUE(waitUntil([&] { return systemBus.connection().has_value(); }));
  {
    EvolutionCalendar calendar(TestDesktop::shared().scheduler, systemBus, nullptr, "mine", 0.01);
    calendar.follow({0}, {1});
    EXPECT_TRUE(waitUntil([&] { return service.calls["Open"] == 4; }));
    EXPECT_EQ(service.calls["Close"], 3) << "before each further attempt";
  }
  EXPECT_TRUE(waitUntil([&] { return service.calls["Close"] == service.calls["OpenCalendar"]; }));
}

}  // namespace
}  // namespace tarnwick
