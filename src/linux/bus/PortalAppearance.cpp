#include "linux/bus/PortalAppearance.h"

#include <QDBusArgument>
#include <QDBusVariant>

namespace tarnwick {
namespace {

constexpr auto portal = "org.freedesktop.portal.Desktop";
constexpr auto path = "/org/freedesktop/portal/desktop";
constexpr auto settings = "org.freedesktop.portal.Settings";

// Their values are described in the portal's documentation of that interface.
constexpr auto appearance = "org.freedesktop.appearance";
constexpr auto accentColorKey = "accent-color";
constexpr auto colorSchemeKey = "color-scheme";
constexpr uint dark = 1;
/// Where desktops keep the name of their icon theme.
constexpr struct {
  const char *group, *key;
} iconThemes[] = {{"org.kde.kdeglobals.Icons", "Theme"}, {"org.gnome.desktop.interface", "icon-theme"}};

/// Red, green and blue; a value outside of 0…1 says that there is no accent colour.
std::optional<Color> color(const QVariant& value) {
  // Reading what has another type than one thinks ends the process.
  const auto argument = value.value<QDBusArgument>();
  if (argument.currentSignature() != "(ddd)") return std::nullopt;
  Color color;
  argument.beginStructure();
  argument >> color.red >> color.green >> color.blue;
  argument.endStructure();
  for (const double component : {color.red, color.green, color.blue}) {
    if (!(component >= 0 && component <= 1)) return std::nullopt;
  }
  return color;
}

}  // namespace

PortalAppearance::PortalAppearance(MessageBus& sessionBus) : portal_(sessionBus, portal, true) {
  portal_.onAppear = [this] { fetch(); };
  // It starts anew now and then: what it has told still holds.
  portal_.onVanish = [] {};
  portal_.onSignal = [this](const QDBusMessage& signal) {
    const QVariantList arguments = signal.arguments();
    adopt(arguments.value(1).toString(), arguments.value(2).value<QDBusVariant>().variant());
  };
  portal_.listen(path, settings, "SettingChanged", appearance);
}

void PortalAppearance::fetch() {
  portal_.call(path, settings, "ReadAll", {QStringList{appearance, iconThemes[0].group, iconThemes[1].group}},
      [this](const QDBusMessage& reply) {
        if (reply.signature() != "a{sa{sv}}") return;
        const auto all = qdbus_cast<QMap<QString, QVariantMap>>(reply.arguments().value(0));
        const QVariantMap values = all[appearance];
        for (const char* key : {accentColorKey, colorSchemeKey}) adopt(key, values[key]);
        for (const auto& [group, key] : iconThemes) {
          const QString name = all[group][key].toString();
          if (name.isEmpty()) continue;
          iconTheme = name.toStdString();
          break;
        }
      });
}

void PortalAppearance::adopt(const QString& key, const QVariant& value) {
  if (key == accentColorKey) accentColor = color(value);
  if (key == colorSchemeKey) prefersDark = value.toUInt() == dark;
}

}  // namespace tarnwick
