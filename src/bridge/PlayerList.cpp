#include "bridge/PlayerList.h"

#include <algorithm>
#include <set>
#include <tuple>

#include "dbus/SessionBusAddress.h"

namespace tarnwick {
namespace {

constexpr const char* busName = "org.freedesktop.DBus";
constexpr const char* busPath = "/org/freedesktop/DBus";
constexpr const char* namePrefix = "org.mpris.MediaPlayer2";
constexpr size_t mostNames = 32;
constexpr int64_t retryInterval = 1'000'000;
/// For so long nothing is heard of players when they come and go without end.
constexpr int64_t silenceInterval = 2'000'000;

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
  const auto flags = static_cast<GDBusConnectionFlags>(
      G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT | G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
  const auto finish = [](GObject*, GAsyncResult* result, gpointer self) {
    auto* list = static_cast<PlayerList*>(self);
    GDBusConnection* bus = g_dbus_connection_new_for_address_finish(result, nullptr);
    bus ? list->connected(bus) : list->disconnected();
  };
  g_dbus_connection_new_for_address(address.c_str(), flags, nullptr, nullptr, finish, this);
}

void PlayerList::disconnected() {
  players_.clear();
  names_.reset();
  silence_.stop();
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
  listen();
}

void PlayerList::listen() {
  const BusSignal signal{.path = busPath,
      .interface = busName,
      .name = "NameOwnerChanged",
      .type = "(sss)",
      .sender = busName,
      .firstArgument = namePrefix,
      .match = G_DBUS_SIGNAL_FLAGS_MATCH_ARG0_NAMESPACE};
  names_.emplace(bus_.get(), signal, [this](GVariant* arguments) {
    if (isTooMuch(arguments)) return;
    const char *name = nullptr, *owner = nullptr;
    g_variant_get(arguments, "(&s&s&s)", &name, nullptr, &owner);
    ownerChanged(name, owner);
  });
  list();
}

/// Where too much is said about who comes and goes, nothing is heard of it for a while.
bool PlayerList::isTooMuch(GVariant* message) {
  if (quota_.take(g_variant_get_size(message))) return false;
  names_.reset();
  silence_.start(silenceInterval, [this] { listen(); });
  return true;
}

/// Finds out who is there.
void PlayerList::list() {
  isCrowded_ = false;
  callAsync(bus_.get(), nullptr, {busName, busPath, busName, "ListNames"}, nullptr,
      [this, bus = bus_.get()](GVariant* reply) {
        if (reply && bus == bus_.get() && !isTooMuch(reply)) listed(reply);
      });
}

void PlayerList::listed(GVariant* reply) {
  std::set<std::string> names;
  GVariantIter* each = nullptr;
  g_variant_get(reply, "(as)", &each);
  const char* text = nullptr;
  while (g_variant_iter_loop(each, "&s", &text)) {
    if (!g_str_has_prefix(text, namePrefix)) continue;
    if (names.size() < mostNames || players_.contains(text)) {
      names.insert(text);
    } else {
      isCrowded_ = true;
    }
  }
  g_variant_iter_free(each);
  std::erase_if(players_, [&](const auto& player) { return !names.contains(player.first); });
  for (const std::string& name : names) {
    callAsync(bus_.get(), nullptr, {busName, busPath, busName, "GetNameOwner"},
        g_variant_new("(s)", name.c_str()), [this, bus = bus_.get(), name](GVariant* answer) {
          if (!answer || bus != bus_.get()) return;
          const char* owner = nullptr;
          g_variant_get(answer, "(&s)", &owner);
          ownerChanged(name, owner);
        });
  }
  onChange_();
}

void PlayerList::ownerChanged(const std::string& name, const std::string& owner) {
  if (const auto known = players_.find(name); known != players_.end()) {
    if (known->second->owner() == owner) return;
    players_.erase(known);
    // There is room for one that had to be left out.
    if (isCrowded_) list();
  }
  if (!owner.empty()) follow(name, owner);
  onChange_();
}

void PlayerList::follow(const std::string& name, const std::string& owner) {
  if (players_.size() >= mostNames) {
    isCrowded_ = true;
    return;
  }
  const auto same = std::find_if(
      players_.begin(), players_.end(), [&](const auto& player) { return player.second->owner() == owner; });
  players_[name] =
      same == players_.end() ? std::make_shared<Player>(bus_.get(), owner, onChange_) : same->second;
}

}  // namespace tarnwick
