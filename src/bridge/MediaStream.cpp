#include "bridge/MediaStream.h"

#include <charconv>

#include "json/JsonString.h"

namespace tarnwick {
namespace {

/// Players that chatter are heard at this interval, in microseconds.
constexpr int64_t lineInterval = 50'000;
/// That nothing plays is told after this time: many players stop for a moment between two tracks.
constexpr int64_t nothingDelay = 500'000;

/// The members of an object that is still open.
std::string describe(Player* player, int64_t artworkId) {
  std::string json = "{\"artworkId\":" + std::to_string(artworkId);
  const auto member = [&](std::string_view key, std::string_view value) {
    ((json += ",\"") += key) += "\":";
    json += value;
  };
  const auto seconds = [&](std::string_view key, int64_t microseconds) {
    char text[32];
    const char* end = std::to_chars(text, std::end(text), static_cast<double>(microseconds) / 1e6).ptr;
    member(key, {text, end});
  };
  if (!player) return json;
  member("title", jsonString(player->track().title));
  member("artist", jsonString(player->track().artist));
  member("album", jsonString(player->track().album));
  seconds("duration", player->track().length);
  seconds("elapsed", player->position());
  seconds("timestamp", player->positionDate());
  member("playing", player->status() == Player::Status::playing ? "true" : "false");
  if (player->process()) member("pid", std::to_string(player->process()));
  if (!player->desktopEntry().empty()) member("desktopEntry", jsonString(player->desktopEntry()));
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

void MediaStream::repeat() {
  lastState_.clear();
  update();
}

void MediaStream::perform(const std::string& command) {
  Player* player = players_.current();
  if (!player) return;
  if (command == "cmd 2") player->togglePlayPause([this] { repeat(); });
  if (command == "cmd 4") player->next();
  if (command == "cmd 5") player->previous();
  if (command.starts_with("seek ")) {
    const char* number = command.c_str() + 5;
    char* end = nullptr;
    const double seconds = g_ascii_strtod(number, &end);
    if (end != number && !*end) player->seek(seconds);
  }
}

}  // namespace tarnwick
