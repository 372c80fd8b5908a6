#pragma once
#include <functional>
#include <map>
#include <memory>
#include <string>

#include "bridge/Player.h"

namespace tarnwick {

/// The players on the session bus, as they come and go. A bus that is missing or ends is looked for again.
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
  void subscribe();
  void ownerChanged(const std::string& name, const std::string& owner);

  const std::function<void()> onChange_;
  Owned<GDBusConnection> bus_;
  /// By the name that makes it a player.
  std::map<std::string, std::unique_ptr<Player>> players_;
  Timer retry_;
};

}  // namespace tarnwick
