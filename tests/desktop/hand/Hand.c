// A mouse and a keyboard for compositors of the wlroots family, of which a headless one has none. Reads a
// command a from standard input, and answers each with a line when the compositor has taken it:
//   move X Y WIDTH HEIGHT   of an area as large as all outputs together
//   down BUTTON, up BUTTON, key CODE   in the numbers of the kernel
//   scroll X Y, lift        of fingers, in points; they leave (sway only)
#define _GNU_SOURCE
#include <stdio.h>
#include <string.h>
#include <sys/mman.h>
#include <time.h>
#include <unistd.h>

#include "fake-input.h"
#include "virtual-keyboard.h"
#include "wlr-virtual-pointer.h"

static struct zwlr_virtual_pointer_manager_v1* pointers;
static struct zwp_virtual_keyboard_manager_v1* keyboards;
static struct wl_seat* seat;
/// KWin's.
static struct org_kde_kwin_fake_input* fake;

static void* bindGlobal(
    struct wl_registry* registry, uint32_t name, uint32_t version, const struct wl_interface* interface) {
  const uint32_t ours = (uint32_t)interface->version;
  return wl_registry_bind(registry, name, interface, version < ours ? version : ours);
}

static void global(
    void* data, struct wl_registry* registry, uint32_t name, const char* interface, uint32_t version) {
  (void)data;
  if (!strcmp(interface, zwlr_virtual_pointer_manager_v1_interface.name))
    pointers = bindGlobal(registry, name, version, &zwlr_virtual_pointer_manager_v1_interface);
  else if (!strcmp(interface, zwp_virtual_keyboard_manager_v1_interface.name))
    keyboards = bindGlobal(registry, name, version, &zwp_virtual_keyboard_manager_v1_interface);
  else if (!strcmp(interface, org_kde_kwin_fake_input_interface.name))
    fake = bindGlobal(registry, name, version, &org_kde_kwin_fake_input_interface);
  else if (!strcmp(interface, wl_seat_interface.name))
    seat = bindGlobal(registry, name, 1, &wl_seat_interface);
}

static void globalGone(void* data, struct wl_registry* registry, uint32_t name) {
  (void)data, (void)registry, (void)name;
}

static uint32_t now(void) {
  struct timespec time;
  clock_gettime(CLOCK_MONOTONIC, &time);
  return (uint32_t)(time.tv_sec * 1000 + time.tv_nsec / 1000000);
}

static struct zwp_virtual_keyboard_v1* makeKeyboard(void) {
  static const char keymap[] =
      "xkb_keymap { xkb_keycodes { include \"evdev\" }; xkb_types { include \"complete\" };"
      " xkb_compat { include \"complete\" }; xkb_symbols { include \"pc+us\" }; };";
  const int file = memfd_create("keymap", MFD_CLOEXEC);
  if (write(file, keymap, sizeof keymap) != sizeof keymap) return NULL;
  struct zwp_virtual_keyboard_v1* keyboard =
      zwp_virtual_keyboard_manager_v1_create_virtual_keyboard(keyboards, seat);
  zwp_virtual_keyboard_v1_keymap(keyboard, WL_KEYBOARD_KEYMAP_FORMAT_XKB_V1, file, sizeof keymap);
  close(file);
  return keyboard;
}

static struct zwlr_virtual_pointer_v1* mouse;
static struct zwp_virtual_keyboard_v1* keyboard;

static void play(const char* line) {
  unsigned x, y, width, height, code;
  double dx, dy;
  if (sscanf(line, "move %u %u %u %u", &x, &y, &width, &height) == 4) {
    zwlr_virtual_pointer_v1_motion_absolute(mouse, now(), x, y, width, height);
  } else if (sscanf(line, "down %u", &code) == 1) {
    zwlr_virtual_pointer_v1_button(mouse, now(), code, WL_POINTER_BUTTON_STATE_PRESSED);
  } else if (sscanf(line, "up %u", &code) == 1) {
    zwlr_virtual_pointer_v1_button(mouse, now(), code, WL_POINTER_BUTTON_STATE_RELEASED);
  } else if (sscanf(line, "scroll %lf %lf", &dx, &dy) == 2) {
    const double ways[] = {dy, dx};
    zwlr_virtual_pointer_v1_axis_source(mouse, WL_POINTER_AXIS_SOURCE_FINGER);
    for (uint32_t axis = 0; axis < 2; ++axis) {
      if (ways[axis] != 0) zwlr_virtual_pointer_v1_axis(mouse, now(), axis, wl_fixed_from_double(ways[axis]));
    }
  } else if (!strncmp(line, "lift", 4)) {
    zwlr_virtual_pointer_v1_axis_source(mouse, WL_POINTER_AXIS_SOURCE_FINGER);
    // That of an axis along which nothing was scrolled would end sway 1.7.
    zwlr_virtual_pointer_v1_axis_stop(mouse, now(), WL_POINTER_AXIS_VERTICAL_SCROLL);
  } else if (sscanf(line, "key %u", &code) == 1 && keyboard) {
    zwp_virtual_keyboard_v1_key(keyboard, now(), code, WL_KEYBOARD_KEY_STATE_PRESSED);
    zwp_virtual_keyboard_v1_key(keyboard, now(), code, WL_KEYBOARD_KEY_STATE_RELEASED);
  }
  zwlr_virtual_pointer_v1_frame(mouse);
}

static void playFake(const char* line) {
  unsigned x, y, code;
  if (sscanf(line, "move %u %u", &x, &y) == 2) {
    org_kde_kwin_fake_input_pointer_motion_absolute(
        fake, wl_fixed_from_int((int)x), wl_fixed_from_int((int)y));
  } else if (sscanf(line, "down %u", &code) == 1) {
    org_kde_kwin_fake_input_button(fake, code, WL_POINTER_BUTTON_STATE_PRESSED);
  } else if (sscanf(line, "up %u", &code) == 1) {
    org_kde_kwin_fake_input_button(fake, code, WL_POINTER_BUTTON_STATE_RELEASED);
  } else if (sscanf(line, "key %u", &code) == 1) {
    org_kde_kwin_fake_input_keyboard_key(fake, code, WL_KEYBOARD_KEY_STATE_PRESSED);
    org_kde_kwin_fake_input_keyboard_key(fake, code, WL_KEYBOARD_KEY_STATE_RELEASED);
  }
}

int main(void) {
  struct wl_display* display = wl_display_connect(NULL);
  if (!display) return fprintf(stderr, "no compositor\n"), 1;
  struct wl_registry* registry = wl_display_get_registry(display);
  static const struct wl_registry_listener listener = {global, globalGone};
  wl_registry_add_listener(registry, &listener, NULL);
  wl_display_roundtrip(display);
  if (fake) {
    org_kde_kwin_fake_input_authenticate(fake, "hand", "");
  } else {
    if (!pointers || !keyboards || !seat) return fprintf(stderr, "no virtual devices here\n"), 1;
    mouse = zwlr_virtual_pointer_manager_v1_create_virtual_pointer(pointers, seat);
    keyboard = makeKeyboard();
  }
  wl_display_roundtrip(display);
  char line[80];
  while (fgets(line, sizeof line, stdin)) {
    fake ? playFake(line) : play(line);
    if (wl_display_roundtrip(display) < 0) return 1;
    puts("done");
    fflush(stdout);
  }
  return 0;
}
