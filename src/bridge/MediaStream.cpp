#include "bridge/MediaStream.h"

#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

namespace tarnwick {
namespace {

/// Players that chatter are heard at this interval, in microseconds.
constexpr int64_t lineInterval = 50'000;
/// That nothing plays is told after this time: many players stop for a moment between two tracks.
constexpr int64_t nothingDelay = 500'000;

/// The members of an object that is still open.
std::string describe(Player* player, int64_t artworkId) {
  rapidjson::StringBuffer buffer;
  rapidjson::Writer<rapidjson::StringBuffer> json(buffer);
  const auto text = [&](const char* key, const std::string& value) {
    json.Key(key);
    json.String(value.data(), static_cast<rapidjson::SizeType>(value.size()));
  };
  const auto seconds = [&](const char* key, int64_t microseconds) {
    json.Key(key);
    json.Double(static_cast<double>(microseconds) / 1e6);
  };
  json.StartObject();
  if (player) {
    text("title", player->track().title);
    text("artist", player->track().artist);
    text("album", player->track().album);
    seconds("duration", player->track().length);
    seconds("elapsed", player->position());
    seconds("timestamp", player->positionDate());
    json.Key("playing");
    json.Bool(player->status() == Player::Status::playing);
    if (player->process()) {
      json.Key("pid");
      json.Uint(player->process());
    }
    if (!player->desktopEntry().empty()) text("desktopEntry", player->desktopEntry());
  }
  json.Key("artworkId");
  json.Int64(artworkId);
  json.EndObject();
  std::string object(buffer.GetString(), buffer.GetSize());
  object.pop_back();
  return object;
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
