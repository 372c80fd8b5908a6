#include "bridge/Player.h"

#include <cmath>
#include <string_view>

namespace tarnwick {
namespace {

constexpr const char* playerPath = "/org/mpris/MediaPlayer2";
constexpr const char* propertiesInterface = "org.freedesktop.DBus.Properties";

/// How often a playing player is asked where it is: not all tell when they seek, or play at normal speed.
constexpr int64_t pollInterval = 5'000'000;
/// A position that is off by less is the time that the answer took.
constexpr int64_t positionTolerance = 400'000;
/// For so long nothing is heard of a player that has said too much.
constexpr int64_t silenceInterval = 2'000'000;
constexpr double highestRate = 100;
constexpr gsize longestName = 255;

bool isPosition(int64_t microseconds) { return microseconds >= 0 && microseconds <= longestTrack; }

/// What to add to the clock that is never set to get microseconds since 1970: the same number as long as
/// nobody sets the other clock and the machine does not sleep.
int64_t clockOffset() {
  constexpr int64_t tolerance = 50'000;
  static int64_t known = 0;
  const int64_t offset = g_get_real_time() - g_get_monotonic_time();
  if (std::abs(offset - known) > tolerance) known = offset;
  return known;
}

}  // namespace

Player::Player(GDBusConnection* bus, std::string owner, std::function<void()> onChange)
    : bus_(bus), owner_(std::move(owner)), onChange_(std::move(onChange)) {
  setPosition(0);
  listen();
  identify();
  load();
}

Player::~Player() { g_cancellable_cancel(life_.get()); }

void Player::call(const char* interface, const char* method, GVariant* arguments, BusReply reply) {
  callAsync(bus_, life_.get(), {owner_, playerPath, interface, method}, arguments,
      [this, reply = std::move(reply)](GVariant* answer) {
        if (answer && isTooMuch(answer)) answer = nullptr;
        reply(answer);
      });
}

void Player::command(const char* interface, const char* method, GVariant* arguments) {
  call(interface, method, arguments, [](GVariant*) {});
}

void Player::listen() {
  const BusSignal changes{.path = playerPath,
      .interface = propertiesInterface,
      .name = "PropertiesChanged",
      .type = "(sa{sv}as)",
      .sender = owner_.c_str(),
      .firstArgument = playerInterface};
  properties_.emplace(bus_, changes, [this](GVariant* arguments) {
    if (!isTooMuch(arguments)) propertiesChanged(arguments);
  });
  const BusSignal seeks{.path = playerPath,
      .interface = playerInterface,
      .name = "Seeked",
      .type = "(x)",
      .sender = owner_.c_str()};
  seeks_.emplace(bus_, seeks, [this](GVariant* arguments) {
    gint64 position = 0;
    g_variant_get(arguments, "(x)", &position);
    if (!isTooMuch(arguments) && isPosition(position)) setPosition(position);
  });
}

/// A player that says too much is not heard for a while, and then asked.
bool Player::isTooMuch(GVariant* message) {
  if (quota_.take(g_variant_get_size(message))) return false;
  properties_.reset();
  seeks_.reset();
  silence_.start(silenceInterval, [this] {
    listen();
    load();
  });
  return true;
}

void Player::identify() {
  constexpr const char* busName = "org.freedesktop.DBus";
  callAsync(bus_, life_.get(), {busName, "/org/freedesktop/DBus", busName, "GetConnectionUnixProcessID"},
      g_variant_new("(s)", owner_.c_str()), [this](GVariant* reply) {
        if (!reply) return;
        g_variant_get(reply, "(u)", &process_);
        onChange_();
      });
  call(propertiesInterface, "GetAll", g_variant_new("(s)", rootInterface), [this](GVariant* reply) {
    if (!reply || !g_variant_is_of_type(reply, G_VARIANT_TYPE("(a{sv})"))) return;
    const Owned<GVariant> properties(g_variant_get_child_value(reply, 0));
    const char* name = "";
    g_variant_lookup(properties.get(), "DesktopEntry", "&s", &name);
    if (std::string_view(name).size() <= longestName) desktopEntry_ = name;
    gboolean canRaise = false;
    g_variant_lookup(properties.get(), "CanRaise", "b", &canRaise);
    canRaise_ = canRaise;
    onChange_();
  });
}

void Player::load() {
  poll();
  if (loading_ || silence_.isRunning()) return;
  loading_ = true;
  ask([this] { loading_ = false; });
}

void Player::ask(std::function<void()> then) {
  call(propertiesInterface, "GetAll", g_variant_new("(s)", playerInterface),
      [this, then = std::move(then)](GVariant* reply) {
        if (reply && g_variant_is_of_type(reply, G_VARIANT_TYPE("(a{sv})"))) {
          loaded_ = true;
          const Owned<GVariant> properties(g_variant_get_child_value(reply, 0));
          apply(properties.get());
        }
        then();
      });
}

void Player::propertiesChanged(GVariant* arguments) {
  const Owned<GVariant> changed(g_variant_get_child_value(arguments, 1));
  const Owned<GVariant> invalidated(g_variant_get_child_value(arguments, 2));
  apply(changed.get());
  if (!loaded_ || g_variant_n_children(invalidated.get()) > 0) {
    load();
  } else {
    askPosition();
  }
}

void Player::apply(GVariant* properties) {
  if (const Owned<GVariant> metadata{
          g_variant_lookup_value(properties, "Metadata", G_VARIANT_TYPE_VARDICT)}) {
    Track track = Track::from(metadata.get());
    if (track.isAnotherThan(track_)) {
      setPosition(0);
    } else if (track.artUrl.empty() && track.artist == track_.artist) {
      // Of the same track some players (Firefox) tell the cover once, and not with what changes later.
      track.artUrl = track_.artUrl;
    }
    if (track != track_) {
      track_ = std::move(track);
      onChange_();
    }
  }
  if (const Owned<GVariant> rate{g_variant_lookup_value(properties, "Rate", G_VARIANT_TYPE_DOUBLE)}) {
    setRate(g_variant_get_double(rate.get()));
  }
  if (const Owned<GVariant> can{g_variant_lookup_value(properties, "CanSeek", G_VARIANT_TYPE_BOOLEAN)}) {
    setCanSeek(g_variant_get_boolean(can.get()));
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

void Player::setRate(double rate) {
  if (!(std::abs(rate) <= highestRate) || rate == rate_) return;
  setPosition(positionNow());
  rate_ = rate;
  onChange_();
}

void Player::setCanSeek(bool can) {
  if (can == canSeek_) return;
  canSeek_ = can;
  onChange_();
}

int64_t Player::positionNow() const {
  if (status_ != Status::playing) return position_;
  const auto passed = static_cast<double>(g_get_monotonic_time() - positionTime_);
  return position_ + static_cast<int64_t>(passed * rate_);
}

int64_t Player::positionDate() const { return positionTime_ + clockOffset(); }

void Player::setPosition(int64_t position) {
  position_ = std::clamp<int64_t>(position, 0, longestTrack);
  positionTime_ = g_get_monotonic_time();
  onChange_();
}

void Player::correctPosition(int64_t reported) {
  const int64_t expected = positionNow();
  if (!isPosition(reported)) return;
  if (reported < expected - positionTolerance || reported > expected + positionTolerance)
    setPosition(reported);
}

void Player::askPosition() {
  if (askingPosition_ || silence_.isRunning()) return;
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
      // The clock may have been set.
      onChange_();
    }
  });
}

void Player::seek(double seconds) {
  if (!(std::abs(seconds) <= longestTrack / 1e6)) return;
  const auto target = static_cast<int64_t>(std::llround(seconds * 1e6));
  track_.id.empty()
      ? command(playerInterface, "Seek", g_variant_new("(x)", target - positionNow()))
      : command(playerInterface, "SetPosition", g_variant_new("(ox)", track_.id.c_str(), target));
}

}  // namespace tarnwick
