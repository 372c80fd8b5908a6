#include "bridge/MediaStream.h"

#include <charconv>

#include "json/JsonString.h"

namespace tarnwick {
namespace {

/// Players that chatter are heard at this interval, in microseconds.
constexpr int64_t lineInterval = 50'000;
/// That nothing plays is told after this time: many players stop for a moment between two tracks.
constexpr int64_t nothingDelay = 500'000;
/// Whoever has sent a command expects that it is obeyed. What has become of it is told after this time.
constexpr int64_t obedienceDelay = 1'000'000;

/// The members of an object that is still open.
std::string describe(Player* player, int64_t artworkId) {
  std::string json = "{\"artworkId\":" + std::to_string(artworkId);
  const auto member = [&](std::string_view key, std::string_view value) {
    ((json += ",\"") += key) += "\":";
    json += value;
  };
  const auto number = [&](std::string_view key, double value) {
    char text[32];
    member(key, {text, std::to_chars(text, std::end(text), value).ptr});
  };
  const auto seconds = [&](std::string_view key, int64_t microseconds) {
    number(key, static_cast<double>(microseconds) / 1e6);
  };
  if (!player) return json;
  member("title", jsonString(player->track().title));
  member("artist", jsonString(player->track().artist));
  member("album", jsonString(player->track().album));
  seconds("duration", player->track().length);
  seconds("elapsed", player->position());
  seconds("timestamp", player->positionDate());
  number("rate", player->rate());
  member("playing", player->status() == Player::Status::playing ? "true" : "false");
  if (!player->canSeek()) member("canSeek", "false");
  if (player->process()) member("pid", std::to_string(player->process()));
  if (!player->desktopEntry().empty()) member("desktopEntry", jsonString(player->desktopEntry()));
  if (player->canRaise()) member("canRaise", "true");
  return json;
}

}  // namespace

int64_t MediaStream::nextLineDue(bool playerIsThere) {
  if (playerIsThere) {
    nothingSince_ = 0;
    return lastLineTime_ + lineInterval;
  }
  if (!nothingSince_) nothingSince_ = g_get_monotonic_time();
  return nothingSince_ + nothingDelay;
}

void MediaStream::update() {
  if (!writer_.isIdle()) return;
  const int64_t due = nextLineDue(players_.current());
  if (pause_.isRunning() && pauseEnd_ <= due) return;
  pauseEnd_ = due;
  // Not now: more of the same news may be on its way.
  pause_.start(due - g_get_monotonic_time(), [this] { writeWhenDue(); });
}

void MediaStream::writeWhenDue() {
  Player* player = players_.current();
  if (nextLineDue(player) > g_get_monotonic_time()) {
    update();
  } else if (writer_.isIdle()) {
    writeLine(player);
  }
}

void MediaStream::writeLine(Player* player) {
  player ? artwork_.want(player->track().artUrl, player->owner() + player->track().id + player->track().title)
         : artwork_.want("", "");
  std::string line = describe(player, artwork_.id());
  const bool newArtwork = artwork_.id() != 0 && artwork_.id() != artworkSent_;
  if (line == lastState_ && !newArtwork) return;
  lastState_ = line;
  if (newArtwork) {
    line += ",\"artwork\":\"" + artwork_.base64() + '"';
    artwork_.release();
  }
  artworkSent_ = artwork_.id();
  lastLineTime_ = g_get_monotonic_time();
  writer_.write(std::move(line += "}\n"));
}

void MediaStream::perform(const std::string& command) {
  if (command.starts_with("network ")) return artwork_.allowNetwork(command == "network on");
  Player* player = players_.current();
  if (!player) return;
  if (command == "cmd 2") {
    player->togglePlayPause();
    tellWhetherObeyed();
  }
  if (command == "cmd 4") player->next();
  if (command == "cmd 5") player->previous();
  if (command == "raise") player->raise();
  if (command.starts_with("seek ")) {
    const char* number = command.c_str() + 5;
    char* end = nullptr;
    const double seconds = g_ascii_strtod(number, &end);
    if (end == number || *end) return;
    player->seek(seconds);
    tellWhetherObeyed();
  }
}

void MediaStream::tellWhetherObeyed() {
  const auto repeat = [this] {
    lastState_.clear();
    update();
  };
  obedience_.start(obedienceDelay, [this, repeat] {
    Player* player = players_.current();
    player ? player->ask(repeat) : repeat();
  });
}

}  // namespace tarnwick
