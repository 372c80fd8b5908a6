#include "bridge/Player.h"

#include <cmath>
#include <string_view>

namespace tarnwick {
namespace {

constexpr const char* propertiesInterface = "org.freedesktop.DBus.Properties";
constexpr const char* rootInterface = "org.mpris.MediaPlayer2";

/// How often a playing player is asked where it is: not all tell when they seek, or play at normal speed.
constexpr int64_t pollInterval = 5'000'000;
/// A position that is off by less is the time that the answer took.
constexpr int64_t positionTolerance = 400'000;

}  // namespace

Player::Player(GDBusConnection* bus, std::string owner, std::function<void()> onChange)
    : bus_(bus), owner_(std::move(owner)), onChange_(std::move(onChange)) {
  setPosition(0);
  identify();
  load();
}

Player::~Player() { g_cancellable_cancel(life_.get()); }

void Player::call(const char* interface, const char* method, GVariant* arguments, BusReply reply) {
  callAsync(bus_, life_.get(), {owner_, playerPath, interface, method}, arguments, std::move(reply));
}

void Player::command(const char* method, GVariant* arguments, BusReply reply) {
  call(
      playerInterface, method, arguments, reply ? std::move(reply) : [](GVariant*) {});
}

void Player::identify() {
  constexpr const char* busName = "org.freedesktop.DBus";
  callAsync(bus_, life_.get(), {busName, "/org/freedesktop/DBus", busName, "GetConnectionUnixProcessID"},
            g_variant_new("(s)", owner_.c_str()), [this](GVariant* reply) {
              if (!reply) return;
              g_variant_get(reply, "(u)", &process_);
              onChange_();
            });
  call(propertiesInterface, "Get", g_variant_new("(ss)", rootInterface, "DesktopEntry"),
       [this](GVariant* reply) {
         if (!reply || !g_variant_is_of_type(reply, G_VARIANT_TYPE("(v)"))) return;
         GVariant* value = nullptr;
         g_variant_get(reply, "(v)", &value);
         const Owned<GVariant> owned(value);
         if (!g_variant_is_of_type(value, G_VARIANT_TYPE_STRING)) return;
         desktopEntry_ = g_variant_get_string(value, nullptr);
         onChange_();
       });
}

void Player::load() {
  poll();
  if (loading_) return;
  loading_ = true;
  call(propertiesInterface, "GetAll", g_variant_new("(s)", playerInterface), [this](GVariant* reply) {
    loading_ = false;
    if (!reply || !g_variant_is_of_type(reply, G_VARIANT_TYPE("(a{sv})"))) return;
    loaded_ = true;
    const Owned<GVariant> properties(g_variant_get_child_value(reply, 0));
    apply(properties.get());
  });
}

void Player::propertiesChanged(GVariant* changed, GVariant* invalidated) {
  apply(changed);
  if (!loaded_ || g_variant_n_children(invalidated) > 0) {
    load();
  } else {
    askPosition();
  }
}

void Player::apply(GVariant* properties) {
  if (const Owned<GVariant> metadata{
          g_variant_lookup_value(properties, "Metadata", G_VARIANT_TYPE_VARDICT)}) {
    Track track = Track::from(metadata.get());
    if (track.isAnotherThan(track_)) setPosition(0);
    if (track != track_) {
      track_ = std::move(track);
      onChange_();
    }
  }
  if (const Owned<GVariant> status{
          g_variant_lookup_value(properties, "PlaybackStatus", G_VARIANT_TYPE_STRING)}) {
    const std::string_view name = g_variant_get_string(status.get(), nullptr);
    setStatus(name == "Playing" ? Status::playing : name == "Paused" ? Status::paused : Status::stopped);
  }
  if (const Owned<GVariant> position{g_variant_lookup_value(properties, "Position", nullptr)}) {
    correctPosition(integer(position.get()));
  }
}

void Player::setStatus(Status status) {
  if (status == status_) return;
  setPosition(positionNow());
  if (status == Status::playing || status_ == Status::playing) {
    static uint64_t changes = 0;
    lastPlayed_ = ++changes;
  }
  status_ = status;
  if (status == Status::playing) poll();
  onChange_();
}

int64_t Player::positionNow() const {
  return status_ == Status::playing ? position_ + (g_get_monotonic_time() - positionTime_) : position_;
}

void Player::setPosition(int64_t position) {
  position_ = std::max<int64_t>(position, 0);
  positionTime_ = g_get_monotonic_time();
  positionDate_ = g_get_real_time();
  onChange_();
}

void Player::correctPosition(int64_t reported) {
  const int64_t expected = positionNow();
  if (reported < expected - positionTolerance || reported > expected + positionTolerance)
    setPosition(reported);
}

void Player::askPosition() {
  if (askingPosition_) return;
  askingPosition_ = true;
  call(propertiesInterface, "Get", g_variant_new("(ss)", playerInterface, "Position"),
       [this](GVariant* reply) {
         askingPosition_ = false;
         if (!reply || !g_variant_is_of_type(reply, G_VARIANT_TYPE("(v)"))) return;
         GVariant* value = nullptr;
         g_variant_get(reply, "(v)", &value);
         const Owned<GVariant> owned(value);
         correctPosition(integer(value));
       });
}

void Player::poll() {
  if (poll_.isRunning()) return;
  poll_.start(pollInterval, [this] {
    if (!loaded_) {
      load();
    } else if (status_ == Status::playing) {
      askPosition();
      poll();
    }
  });
}

void Player::togglePlayPause(std::function<void()> refused) {
  command("PlayPause", nullptr, [refused = std::move(refused)](GVariant* reply) {
    if (!reply) refused();
  });
}

void Player::seek(double seconds) {
  if (!std::isfinite(seconds) || std::abs(seconds) > 1e9) return;
  const auto target = static_cast<int64_t>(std::llround(seconds * 1e6));
  const auto arrived = [this](GVariant*) { askPosition(); };
  if (track_.id.empty()) {
    command("Seek", g_variant_new("(x)", target - positionNow()), arrived);
  } else {
    command("SetPosition", g_variant_new("(ox)", track_.id.c_str(), target), arrived);
  }
}

}  // namespace tarnwick
