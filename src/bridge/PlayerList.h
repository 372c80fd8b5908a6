#pragma once
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "bridge/Player.h"

namespace tarnwick {

/// The players on the session bus, as they come and go. A bus that is missing or ends is looked for again. Of
/// more players than anybody has, the first ones are followed.
class PlayerList {
 public:
  /// `onChange` is told when a player comes, goes or has news.
  explicit PlayerList(std::function<void()> onChange);

  /// The player that plays; of several the one that started last. When none does, the one that played last.
  /// None: null.
  Player* current();

 private:
  void connect();
  void connected(GDBusConnection* bus);
  void disconnected();
  void listen();
  bool isTooMuch(GVariant* message);
  void list();
  void listed(GVariant* reply);
  void ownerChanged(const std::string& name, const std::string& owner);
  void follow(const std::string& name, const std::string& owner);

  const std::function<void()> onChange_;
  Owned<GDBusConnection> bus_;
  std::optional<BusListener> names_;
  Quota quota_;
  /// Runs while nothing is heard of players that come and go.
  Timer silence_;
  Timer retry_;
  /// By the name that makes it a player. A program of several such names is one player.
  std::map<std::string, std::shared_ptr<Player>> players_;
  /// There are more.
  bool isCrowded_ = false;
};

}  // namespace tarnwick
