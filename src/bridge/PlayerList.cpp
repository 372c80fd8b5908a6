#include "bridge/PlayerList.h"

#include <tuple>

#include "dbus/SessionBusAddress.h"

namespace tarnwick {
namespace {

constexpr const char* busName = "org.freedesktop.DBus";
constexpr const char* namePrefix = "org.mpris.MediaPlayer2";
constexpr int64_t retryInterval = 5'000'000;

using Handler = std::function<void(const char* sender, GVariant* arguments)>;

/// Calls `handler` for the signals whose arguments are of that type, as long as the connection lives.
void listen(GDBusConnection* bus, const char* sender, const char* interface, const char* member,
            const char* path, const char* firstArgument, GDBusSignalFlags flags, const char* type,
            Handler handler) {
  struct Closure {
    const char* type;
    Handler handler;
  };
  const auto deliver = [](GDBusConnection*, const gchar* from, const gchar*, const gchar*, const gchar*,
                          GVariant* arguments, gpointer data) {
    const auto* closure = static_cast<Closure*>(data);
    if (g_variant_is_of_type(arguments, G_VARIANT_TYPE(closure->type))) closure->handler(from, arguments);
  };
  g_dbus_connection_signal_subscribe(bus, sender, interface, member, path, firstArgument, flags, deliver,
                                     new Closure{type, std::move(handler)},
                                     [](gpointer data) { delete static_cast<Closure*>(data); });
}

}  // namespace

PlayerList::PlayerList(std::function<void()> onChange) : onChange_(std::move(onChange)) { connect(); }

Player* PlayerList::current() {
  const auto rank = [](const Player& player) {
    return std::tuple(player.status() == Player::Status::playing, player.lastPlayed());
  };
  Player* best = nullptr;
  for (const auto& [name, player] : players_) {
    if (player->hasTrack() && (!best || rank(*player) > rank(*best))) best = player.get();
  }
  return best;
}

void PlayerList::connect() {
  const std::string address = sessionBusAddress();
  if (address.empty()) return disconnected();
  const auto flags = static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                                       G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
  const auto finish = [](GObject*, GAsyncResult* result, gpointer self) {
    auto* list = static_cast<PlayerList*>(self);
    GDBusConnection* bus = g_dbus_connection_new_for_address_finish(result, nullptr);
    bus ? list->connected(bus) : list->disconnected();
  };
  g_dbus_connection_new_for_address(address.c_str(), flags, nullptr, nullptr, finish, this);
}

void PlayerList::disconnected() {
  players_.clear();
  bus_.reset();
  onChange_();
  retry_.start(retryInterval, [this] { connect(); });
}

void PlayerList::connected(GDBusConnection* bus) {
  bus_.reset(bus);
  g_dbus_connection_set_exit_on_close(bus, false);
  const auto closed = +[](GDBusConnection*, gboolean, GError*, gpointer self) {
    static_cast<PlayerList*>(self)->disconnected();
  };
  g_signal_connect(bus, "closed", G_CALLBACK(closed), this);
  subscribe();
  callAsync(bus, nullptr, {busName, "/org/freedesktop/DBus", busName, "ListNames"}, nullptr,
            [this, bus](GVariant* reply) {
              if (!reply || bus != bus_.get()) return;
              GVariantIter* names = nullptr;
              g_variant_get(reply, "(as)", &names);
              const char* name = nullptr;
              while (g_variant_iter_loop(names, "&s", &name)) {
                if (!g_str_has_prefix(name, namePrefix)) continue;
                callAsync(bus, nullptr, {busName, "/org/freedesktop/DBus", busName, "GetNameOwner"},
                          g_variant_new("(s)", name),
                          [this, bus, player = std::string(name)](GVariant* answer) {
                            if (!answer || bus != bus_.get()) return;
                            const char* owner = nullptr;
                            g_variant_get(answer, "(&s)", &owner);
                            ownerChanged(player, owner);
                          });
              }
              g_variant_iter_free(names);
            });
}

void PlayerList::subscribe() {
  listen(bus_.get(), busName, busName, "NameOwnerChanged", "/org/freedesktop/DBus", namePrefix,
         G_DBUS_SIGNAL_FLAGS_MATCH_ARG0_NAMESPACE, "(sss)", [this](const char*, GVariant* arguments) {
           const char *name = nullptr, *owner = nullptr;
           g_variant_get(arguments, "(&s&s&s)", &name, nullptr, &owner);
           ownerChanged(name, owner);
         });
  listen(bus_.get(), nullptr, "org.freedesktop.DBus.Properties", "PropertiesChanged", playerPath,
         playerInterface, G_DBUS_SIGNAL_FLAGS_NONE, "(sa{sv}as)",
         [this](const char* sender, GVariant* arguments) {
           const Owned<GVariant> changed(g_variant_get_child_value(arguments, 1));
           const Owned<GVariant> invalidated(g_variant_get_child_value(arguments, 2));
           for (const auto& [name, player] : players_) {
             if (player->owner() == sender) player->propertiesChanged(changed.get(), invalidated.get());
           }
         });
  listen(bus_.get(), nullptr, playerInterface, "Seeked", playerPath, nullptr, G_DBUS_SIGNAL_FLAGS_NONE, "(x)",
         [this](const char* sender, GVariant* arguments) {
           gint64 position = 0;
           g_variant_get(arguments, "(x)", &position);
           for (const auto& [name, player] : players_) {
             if (player->owner() == sender) player->seeked(position);
           }
         });
}

void PlayerList::ownerChanged(const std::string& name, const std::string& owner) {
  const auto known = players_.find(name);
  if (known != players_.end() && known->second->owner() == owner) return;
  players_.erase(name);
  if (!owner.empty()) players_[name] = std::make_unique<Player>(bus_.get(), owner, onChange_);
  onChange_();
}

}  // namespace tarnwick
