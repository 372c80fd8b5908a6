#include "ui/elements/SymbolTable.h"

#include <algorithm>
#include <iterator>

namespace tarnwick::ui {
namespace {

/// Optical corrections: of glyphs that fill their square almost to the edge, where the others leave a margin
/// of a twelfth on each side; and of a sun that is the dimmer one because it is smaller.
constexpr double full = 0.88, dim = 0.66;

/// Of a battery that stands in the font: its end comes to the right.
constexpr double lying = 90;

struct Entry {
  std::string_view name;
  SymbolGlyph glyph;
};

/// Sorted by name. The comment names the glyph in the font.
constexpr Entry table[] = {
    {"airplayaudio", {0xe055, full}},                   // airplay
    {"airpods", {0xf003}},                              // earbuds
    {"airpodsmax", {0xf01f}},                           // headphones
    {"airpodspro", {0xf003}},                           // earbuds
    {"arrow.up.forward.square", {0xe89e}},              // open_in_new
    {"backward.fill", {0xe020}},                        // fast_rewind
    {"battery.25percent", {0xebe0, 1, lying}},          // battery_2_bar
    {"beats.headphones", {0xf01f}},                     // headphones
    {"bolt.fill", {0xea0b}},                            // bolt
    {"calendar", {0xebcc}},                             // calendar_month
    {"checkmark", {0xe5ca}},                            // check
    {"checkmark.circle.fill", {0xe86c}},                // check_circle
    {"chevron.down", {0xe5cf}},                         // expand_more
    {"doc.fill", {0xe24d}},                             // insert_drive_file
    {"dot.radiowaves.left.and.right", {0xe51e}},        // sensors
    {"exclamationmark.triangle.fill", {0xe002, full}},  // warning
    {"forward.fill", {0xe01f}},                         // fast_forward
    {"gearshape.fill", {0xe8b8}},                       // settings
    {"hand.raised.fill", {0xe764, full}},               // back_hand
    {"headphones", {0xf01f}},                           // headphones
    {"hifispeaker.fill", {0xe32d}},                     // speaker
    {"house.fill", {0xe88a}},                           // home
    {"keyboard", {0xe312}},                             // keyboard
    {"laptopcomputer", {0xe31e, full}},                 // laptop
    {"leaf.fill", {0xea35}},                            // eco
    {"magicmouse", {0xe323, full}},                     // mouse
    {"mic", {0xe02a}},                                  // mic_none
    {"mic.fill", {0xe029}},                             // mic
    {"mic.slash.fill", {0xe02b}},                       // mic_off
    {"moon.zzz.fill", {0xef44}},                        // bedtime
    {"music.note", {0xe405}},                           // music_note
    {"note.text", {0xf1fc}},                            // sticky_note_2
    {"pause.fill", {0xe034}},                           // pause
    {"play.fill", {0xe037}},                            // play_arrow
    {"powerplug.fill", {0xe63c}},                       // power
    {"rectangle.and.hand.point.up.left", {0xe913}},     // touch_app
    {"server.rack", {0xe875}},                          // dns
    {"sun.max.fill", {0xe518, full}},                   // light_mode
    {"sun.min.fill", {0xe518, dim}},                    // light_mode, smaller
    {"trash", {0xe92e}},                                // delete_outline
    {"tray.and.arrow.down.fill", {0xe168}},             // move_to_inbox
    {"tray.full.fill", {0xe156}},                       // inbox
    {"tv", {0xe333, full}},                             // tv
    {"waveform", {0xe1b8}},                             // graphic_eq
    {"xmark.circle.fill", {0xe5c9}},                    // cancel
};

static_assert(std::ranges::is_sorted(table, {}, &Entry::name));

}  // namespace

std::optional<SymbolGlyph> symbolGlyph(std::string_view name) {
  const auto* found = std::ranges::lower_bound(table, name, {}, &Entry::name);
  if (found == std::end(table) || found->name != name) return std::nullopt;
  return found->glyph;
}

}  // namespace tarnwick::ui
