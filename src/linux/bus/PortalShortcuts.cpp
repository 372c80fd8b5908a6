#include "linux/bus/PortalShortcuts.h"

#include <QDBusArgument>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QDBusVariant>

namespace tarnwick {
namespace {

constexpr auto portal = "org.freedesktop.portal.Desktop";
constexpr auto portalPath = "/org/freedesktop/portal/desktop";
constexpr auto interface = "org.freedesktop.portal.GlobalShortcuts";

/// As the portal takes and gives it: a name with its properties.
struct PortalShortcut {
  QString name;
  QVariantMap properties;
};

QDBusArgument& operator<<(QDBusArgument& argument, const PortalShortcut& shortcut) {
  argument.beginStructure();
  argument << shortcut.name << shortcut.properties;
  argument.endStructure();
  return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, PortalShortcut& shortcut) {
  argument.beginStructure();
  argument >> shortcut.name >> shortcut.properties;
  argument.endStructure();
  return argument;
}

/// In the form of the XDG shortcuts specification.
QString trigger(const KeyChord& chord) {
  QString text;
  if (chord.control) text += "CTRL+";
  if (chord.alt) text += "ALT+";
  if (chord.shift) text += "SHIFT+";
  if (chord.super) text += "LOGO+";
  return text + QString::fromStdString(chord.key);
}

}  // namespace
}  // namespace tarnwick

Q_DECLARE_METATYPE(tarnwick::PortalShortcut)

namespace tarnwick {

PortalShortcuts::PortalShortcuts(MessageBus& sessionBus) : portal_(sessionBus, portal, true) {
  portal_.onAppear = [this] {
    portal_.call(portalPath, "org.freedesktop.DBus.Properties", "Get", {interface, "version"},
        [this](const QDBusMessage& reply) {
          available = reply.arguments().value(0).value<QDBusVariant>().variant().toUInt() > 0;
          if (available && session_.isEmpty() && !wanted_.empty()) createSession();
        });
  };
  portal_.onVanish = [this] {
    session_.clear();
    request_.clear();
  };
  portal_.onSignal = [this](const QDBusMessage& signal) { received(signal); };
  portal_.listen({}, "org.freedesktop.portal.Request", "Response");
  portal_.listen(portalPath, interface, "Activated");
}

void PortalShortcuts::look() { follow(); }

void PortalShortcuts::set(const std::map<std::string, Wanted>& wanted) {
  wanted_ = wanted;
  closeSession();
  tell(Result::State::asking);
  if (wanted.empty()) return;
  follow();
  if (available) createSession();
}

void PortalShortcuts::follow() {
  if (std::exchange(isFollowing_, true)) return;
  qDBusRegisterMetaType<PortalShortcut>();
  qDBusRegisterMetaType<QList<PortalShortcut>>();
  portal_.follow();
}

QVariantMap PortalShortcuts::nextRequest() {
  request_ = QString("tarnwick%1").arg(++requests_);
  return {{"handle_token", request_}};
}

void PortalShortcuts::createSession() {
  QVariantMap options = nextRequest();
  options["session_handle_token"] = request_;
  portal_.call(
      portalPath, interface, "CreateSession", {options}, [](const QDBusMessage&) {},
      [this](const QDBusMessage&) { tell(Result::State::refused); });
}

void PortalShortcuts::bind() {
  QList<PortalShortcut> shortcuts;
  for (const auto& [name, each] : wanted_) {
    shortcuts.append({QString::fromStdString(name),
        {{"description", QString::fromStdString(each.description)},
            {"preferred_trigger", trigger(each.chord)}}});
  }
  portal_.call(
      portalPath, interface, "BindShortcuts",
      {QVariant::fromValue(QDBusObjectPath(session_)), QVariant::fromValue(shortcuts), QString(),
          nextRequest()},
      [](const QDBusMessage&) {}, [this](const QDBusMessage&) { tell(Result::State::refused); });
}

void PortalShortcuts::received(const QDBusMessage& signal) {
  const QVariantList arguments = signal.arguments();
  if (signal.member() == "Activated") {
    const bool isOurs = !session_.isEmpty() && arguments.value(0).value<QDBusObjectPath>().path() == session_;
    const std::string name = arguments.value(1).toString().toStdString();
    if (isOurs && wanted_.contains(name) && onPress) onPress(name);
  } else if (!request_.isEmpty() && signal.path().endsWith("/" + request_) &&
             signal.signature() == "ua{sv}") {
    request_.clear();
    answered(arguments[0].toUInt(), qdbus_cast<QVariantMap>(arguments[1]));
  }
}

void PortalShortcuts::answered(uint response, const QVariantMap& values) {
  if (response != 0) return tell(Result::State::refused);
  if (session_.isEmpty()) {
    // A path that is handed over as a text, by the portal's own documentation.
    session_ = values["session_handle"].toString();
    return session_.isEmpty() ? tell(Result::State::refused) : bind();
  }
  std::map<std::string, Result> outcome;
  for (const auto& [name, each] : wanted_) outcome[name] = {Result::State::refused};
  const auto argument = values["shortcuts"].value<QDBusArgument>();
  if (argument.currentSignature() == "a(sa{sv})") {
    for (const auto& bound : qdbus_cast<QList<PortalShortcut>>(argument)) {
      const std::string name = bound.name.toStdString();
      if (!wanted_.contains(name)) continue;
      outcome[name] = {
          Result::State::works, bound.properties["trigger_description"].toString().toStdString()};
    }
  }
  results = outcome;
}

void PortalShortcuts::tell(Result::State state) {
  std::map<std::string, Result> outcome;
  for (const auto& [name, each] : wanted_) outcome[name] = {state};
  results = outcome;
}

void PortalShortcuts::closeSession() {
  request_.clear();
  if (session_.isEmpty()) return;
  portal_.call(session_, "org.freedesktop.portal.Session", "Close", {}, [](const QDBusMessage&) {});
  session_.clear();
}

}  // namespace tarnwick
