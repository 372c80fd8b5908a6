#include "linux/x11/X11MediaKeys.h"

#include <X11/XF86keysym.h>

#include <algorithm>

#include "linux/x11/X11KeyGrab.h"

namespace tarnwick {
namespace {

constexpr struct {
  xcb_keysym_t keysym;
  MediaKey meaning;
} specialKeys[] = {{XF86XK_AudioRaiseVolume, MediaKey::soundUp},
    {XF86XK_AudioLowerVolume, MediaKey::soundDown}, {XF86XK_AudioMute, MediaKey::mute},
    {XF86XK_MonBrightnessUp, MediaKey::brightnessUp}, {XF86XK_MonBrightnessDown, MediaKey::brightnessDown}};

/// Programs that start and end by the second must not keep this one busy.
constexpr double releaseDelay = 0.5;
/// Where the server does not tell of releases.
constexpr double retryInterval = 60;

}  // namespace

/// Keys that are grabbed while it lives.
class X11MediaKeys::Tap {
 public:
  Tap(X11Connection& connection, std::vector<Key> keys, Handler handler)
      : connection_(connection), keys_(std::move(keys)), handler_(std::move(handler)) {}

  bool grab() {
    std::vector<X11KeyGrab::Key> keys;
    for (const Key& key : keys_) keys.push_back({key.keycode, XCB_MOD_MASK_ANY});
    grab_.emplace(connection_, std::move(keys));
    return grab_->isComplete();
  }

  void handle(const xcb_key_press_event_t& event, bool down) {
    const auto key = std::find_if(
        keys_.begin(), keys_.end(), [&](const Key& candidate) { return candidate.keycode == event.detail; });
    if (key == keys_.end()) return;
    // Holding the mute key must not toggle for ever.
    if (repeats_.isRepeat(event, down) && key->meaning == MediaKey::mute) return;
    handler_({.key = key->meaning,
        .down = down,
        .shift = (event.state & XCB_MOD_MASK_SHIFT) != 0,
        .alt = (event.state & XCB_MOD_MASK_1) != 0});
  }

  bool holds(xcb_keycode_t keycode) const {
    return std::any_of(keys_.begin(), keys_.end(), [&](const Key& key) { return key.keycode == keycode; });
  }

 private:
  X11Connection& connection_;
  const std::vector<Key> keys_;
  const Handler handler_;
  X11KeyRepeats repeats_;
  std::optional<X11KeyGrab> grab_;
};

X11MediaKeys::X11MediaKeys(X11Connection& connection, Scheduler& scheduler)
    : connection_(connection), scheduler_(scheduler) {
  events_ = connection_.onEvent([this](const xcb_generic_event_t& event) { handle(event); });
}

/// Where the keys are on the keyboard; a key may be there several times, or not at all.
std::vector<X11MediaKeys::Key> X11MediaKeys::locate(const std::vector<MediaKey>& keys) const {
  const xcb_setup_t* setup = xcb_get_setup(connection_);
  const auto count = static_cast<uint8_t>(setup->max_keycode - setup->min_keycode + 1);
  const auto mapping = owned(xcb_get_keyboard_mapping_reply(
      connection_, xcb_get_keyboard_mapping(connection_, setup->min_keycode, count), nullptr));
  std::vector<Key> found;
  if (!mapping) return found;
  const xcb_keysym_t* keysyms = xcb_get_keyboard_mapping_keysyms(mapping.get());
  for (int i = 0; i < count; ++i) {
    // What the key means by itself: grabbed, it is caught with all modifiers.
    const xcb_keysym_t keysym = keysyms[i * mapping->keysyms_per_keycode];
    for (const auto& special : specialKeys) {
      if (special.keysym != keysym || std::find(keys.begin(), keys.end(), special.meaning) == keys.end()) {
        continue;
      }
      found.push_back({static_cast<xcb_keycode_t>(setup->min_keycode + i), special.meaning});
    }
  }
  return found;
}

std::optional<Subscription> X11MediaKeys::tap(const std::vector<MediaKey>& keys, Handler handler) {
  if (connection_.isXWayland()) return std::nullopt;
  const auto tap = std::make_shared<Tap>(connection_, locate(keys), std::move(handler));
  if (!tap->grab()) {
    watchForRelease();
    // They may have come free before somebody watched.
    if (!tap->grab()) return std::nullopt;
  }
  taps_.push_back(tap);
  return Subscription(tap);
}

bool X11MediaKeys::isTrusted(const std::vector<MediaKey>& keys) {
  if (connection_.isXWayland()) return false;
  std::vector<Key> others = locate(keys);
  for (const auto& tap : liveTaps()) {
    std::erase_if(others, [&](const Key& key) { return tap->holds(key.keycode); });
  }
  return Tap(connection_, std::move(others), nullptr).grab();
}

void X11MediaKeys::watchForRelease() {
  if (releaseWatch_) return;
  releaseWatch_ = std::make_unique<X11ReleaseWatch>(connection_, [this] { tellChangeIn(releaseDelay); });
  if (!releaseWatch_->isActive()) tellChangeIn(retryInterval);
}

void X11MediaKeys::tellChangeIn(double seconds) {
  telling_ = scheduler_.after(seconds, [this] {
    releaseWatch_.reset();
    changes_.notifyObservers();
  });
}

std::vector<std::shared_ptr<X11MediaKeys::Tap>> X11MediaKeys::liveTaps() {
  std::erase_if(taps_, [](const auto& tap) { return tap.expired(); });
  std::vector<std::shared_ptr<Tap>> live;
  for (const auto& tap : taps_) live.push_back(tap.lock());
  return live;
}

void X11MediaKeys::handle(const xcb_generic_event_t& event) {
  const uint8_t type = event.response_type & 0x7f;
  if (type == XCB_KEY_PRESS || type == XCB_KEY_RELEASE) {
    const auto& key = reinterpret_cast<const xcb_key_press_event_t&>(event);
    for (const auto& tap : liveTaps()) tap->handle(key, type == XCB_KEY_PRESS);
  } else if (type == XCB_MAPPING_NOTIFY) {
    const auto& mapping = reinterpret_cast<const xcb_mapping_notify_event_t&>(event);
    // Changing a layout brings many of these.
    if (mapping.request == XCB_MAPPING_KEYBOARD) {
      tellChangeIn(0);
    }
  }
}

}  // namespace tarnwick
