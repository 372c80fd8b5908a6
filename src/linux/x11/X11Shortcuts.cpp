#include "linux/x11/X11Shortcuts.h"

#include <xkbcommon/xkbcommon.h>

#include <algorithm>

namespace tarnwick {
namespace {

/// Programs that start and end by the second must not keep this one busy.
constexpr double releaseDelay = 0.5;

constexpr uint16_t chordMask = XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_SHIFT | XCB_MOD_MASK_1 | XCB_MOD_MASK_4;
/// Caps lock and number lock, where servers usually have them, change nothing.
constexpr uint16_t locks[] = {0, XCB_MOD_MASK_LOCK, XCB_MOD_MASK_2, XCB_MOD_MASK_LOCK | XCB_MOD_MASK_2};

uint16_t maskOf(const KeyChord& chord) {
  return static_cast<uint16_t>(
      (chord.control ? XCB_MOD_MASK_CONTROL : 0) | (chord.shift ? XCB_MOD_MASK_SHIFT : 0) |
      (chord.alt ? XCB_MOD_MASK_1 : 0) | (chord.super ? XCB_MOD_MASK_4 : 0));
}

}  // namespace

X11Shortcuts::X11Shortcuts(X11Connection& connection, Scheduler& scheduler)
    : connection_(connection), scheduler_(scheduler) {
  events_ = connection_.onEvent([this](const xcb_generic_event_t& event) { handle(event); });
  available = true;
}

void X11Shortcuts::set(const std::map<std::string, Wanted>& wanted) {
  wanted_ = wanted;
  grab();
}

void X11Shortcuts::pause(bool paused) {
  isPaused_ = paused;
  grab();
}

/// Where the key is on the keyboard: by itself or with shift.
std::vector<X11KeyGrab::Key> X11Shortcuts::locate(const KeyChord& chord) const {
  const xcb_keysym_t wanted = xkb_keysym_from_name(chord.key.c_str(), XKB_KEYSYM_NO_FLAGS);
  const xcb_setup_t* setup = xcb_get_setup(connection_);
  const auto count = static_cast<uint8_t>(setup->max_keycode - setup->min_keycode + 1);
  const auto mapping = owned(xcb_get_keyboard_mapping_reply(
      connection_, xcb_get_keyboard_mapping(connection_, setup->min_keycode, count), nullptr));
  std::vector<X11KeyGrab::Key> found;
  if (!mapping || wanted == XKB_KEY_NoSymbol) return found;
  const xcb_keysym_t* keysyms = xcb_get_keyboard_mapping_keysyms(mapping.get());
  for (int i = 0; i < count; ++i) {
    const xcb_keysym_t* levels = keysyms + i * mapping->keysyms_per_keycode;
    const int known = std::min<int>(chord.shift ? 2 : 1, mapping->keysyms_per_keycode);
    if (std::find(levels, levels + known, wanted) == levels + known) continue;
    for (const uint16_t lock : locks) {
      found.push_back(
          {static_cast<xcb_keycode_t>(setup->min_keycode + i), static_cast<uint16_t>(maskOf(chord) | lock)});
    }
  }
  return found;
}

void X11Shortcuts::grab() {
  shortcuts_.clear();
  if (isPaused_) return;
  retry_ = {};
  releaseWatch_.reset();
  std::map<std::string, Result> outcome;
  for (const auto& [name, each] : wanted_) {
    Shortcut shortcut{name, locate(each.chord), nullptr};
    const auto take = [&] {
      shortcut.grab = std::make_unique<X11KeyGrab>(connection_, shortcut.keys);
      return shortcut.grab->isComplete();
    };
    bool works = !shortcut.keys.empty() && take();
    if (!works && !shortcut.keys.empty()) {
      shortcut.grab.reset();
      if (!releaseWatch_) {
        releaseWatch_ = std::make_unique<X11ReleaseWatch>(connection_, [this] { grabIn(releaseDelay); });
      }
      // They may have come free before somebody watched.
      works = take();
    }
    outcome[name] = {works ? Result::State::works : Result::State::taken};
    if (works) shortcuts_.push_back(std::move(shortcut));
  }
  results = outcome;
}

void X11Shortcuts::grabIn(double seconds) {
  retry_ = scheduler_.after(seconds, [this] { grab(); });
}

void X11Shortcuts::handle(const xcb_generic_event_t& event) {
  const uint8_t type = event.response_type & 0x7f;
  if (type == XCB_MAPPING_NOTIFY) {
    const auto& mapping = reinterpret_cast<const xcb_mapping_notify_event_t&>(event);
    // Changing a layout brings many of these.
    if (mapping.request == XCB_MAPPING_KEYBOARD && !wanted_.empty()) grabIn(0);
  }
  if (type != XCB_KEY_PRESS && type != XCB_KEY_RELEASE) return;
  const auto& key = reinterpret_cast<const xcb_key_press_event_t&>(event);
  if (repeats_.isRepeat(key, type == XCB_KEY_PRESS) || type == XCB_KEY_RELEASE) return;
  const auto shortcut = std::ranges::find_if(shortcuts_, [&](const Shortcut& each) {
    return std::ranges::any_of(each.keys, [&](const X11KeyGrab::Key& candidate) {
      return candidate.keycode == key.detail && (candidate.modifiers & chordMask) == (key.state & chordMask);
    });
  });
  if (shortcut != shortcuts_.end() && onPress) onPress(std::string(shortcut->name));
}

}  // namespace tarnwick
