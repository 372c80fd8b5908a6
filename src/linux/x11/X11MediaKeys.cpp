#include "linux/x11/X11MediaKeys.h"

#include <X11/XF86keysym.h>

#include <algorithm>

namespace tarnwick {
namespace {

constexpr struct {
  xcb_keysym_t keysym;
  int code;
} specialKeys[] = {{XF86XK_AudioRaiseVolume, mediakey::soundUp},
                   {XF86XK_AudioLowerVolume, mediakey::soundDown},
                   {XF86XK_AudioMute, mediakey::mute},
                   {XF86XK_MonBrightnessUp, mediakey::brightnessUp},
                   {XF86XK_MonBrightnessDown, mediakey::brightnessDown}};

unsigned modifierFlags(uint16_t state) {
  return (state & XCB_MOD_MASK_SHIFT ? modifierflag::shift : 0) |
         (state & XCB_MOD_MASK_1 ? modifierflag::option : 0);
}

}  // namespace

/// Keys that are grabbed while it lives.
class X11MediaKeys::Tap {
 public:
  Tap(X11Connection& connection, std::vector<Key> keys, Handler handler)
      : connection_(connection), keys_(std::move(keys)), handler_(std::move(handler)) {}

  ~Tap() {
    // Also after a grab that failed in part: only own grabs are touched.
    for (const Key& key : keys_) {
      xcb_ungrab_key(connection_, key.keycode, connection_.root(), XCB_MOD_MASK_ANY);
    }
    xcb_flush(connection_);
  }

  bool grab() {
    std::vector<xcb_void_cookie_t> cookies;
    for (const Key& key : keys_) {
      cookies.push_back(xcb_grab_key_checked(connection_, 1, connection_.root(), XCB_MOD_MASK_ANY,
                                             key.keycode, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC));
    }
    bool grabbed = true;
    for (const auto cookie : cookies) grabbed &= owned(xcb_request_check(connection_, cookie)) == nullptr;
    return grabbed;
  }

  void handle(const xcb_key_press_event_t& event, bool down) {
    const auto key = std::find_if(keys_.begin(), keys_.end(),
                                  [&](const Key& candidate) { return candidate.keycode == event.detail; });
    if (key == keys_.end()) return;
    // A key that repeats is released and pressed at the same instant.
    const auto now = std::make_pair(event.detail, event.time);
    const bool repeats = down && lastRelease_ == now;
    if (!down) lastRelease_ = now;
    // Holding the mute key must not toggle for ever.
    if (repeats && key->code == mediakey::mute) return;
    handler_(key->code, down, modifierFlags(event.state));
  }

 private:
  X11Connection& connection_;
  const std::vector<Key> keys_;
  const Handler handler_;
  std::optional<std::pair<xcb_keycode_t, xcb_timestamp_t>> lastRelease_;
};

X11MediaKeys::X11MediaKeys(X11Connection& connection, Scheduler& scheduler)
    : connection_(connection), scheduler_(scheduler) {
  events_ = connection_.onEvent([this](const xcb_generic_event_t& event) { handle(event); });
}

/// Where the keys are on the keyboard; a key may be there several times, or not at all.
std::vector<X11MediaKeys::Key> X11MediaKeys::keys(const std::vector<int>& codes) const {
  const xcb_setup_t* setup = xcb_get_setup(connection_);
  const auto count = static_cast<uint8_t>(setup->max_keycode - setup->min_keycode + 1);
  const auto mapping = owned(xcb_get_keyboard_mapping_reply(
      connection_, xcb_get_keyboard_mapping(connection_, setup->min_keycode, count), nullptr));
  std::vector<Key> keys;
  if (!mapping) return keys;
  const xcb_keysym_t* keysyms = xcb_get_keyboard_mapping_keysyms(mapping.get());
  for (int i = 0; i < count; ++i) {
    // What the key means by itself: grabbed, it is caught with all modifiers.
    const xcb_keysym_t keysym = keysyms[i * mapping->keysyms_per_keycode];
    for (const auto& special : specialKeys) {
      if (special.keysym != keysym || std::find(codes.begin(), codes.end(), special.code) == codes.end()) {
        continue;
      }
      keys.push_back({static_cast<xcb_keycode_t>(setup->min_keycode + i), special.code});
    }
  }
  return keys;
}

std::optional<Subscription> X11MediaKeys::tap(const std::vector<int>& codes, Handler handler) {
  std::shared_ptr<Tap> tap;
  if (!connection_.isXWayland()) {
    tap = std::make_shared<Tap>(connection_, keys(codes), std::move(handler));
    if (!tap->grab()) tap = nullptr;
  }
  // As long as some keys are held the session does let them be caught.
  trusted_ = tap || !liveTaps().empty();
  if (!tap) return std::nullopt;
  taps_.push_back(tap);
  return Subscription(tap);
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
      moved_ = scheduler_.post([this] { moves_.notifyObservers(); });
    }
  }
}

}  // namespace tarnwick
