// A mouse and a keyboard for compositors of the wlroots family, of which a headless one has none. Reads a
// command a line from standard input, and answers each with a line when the compositor has taken it:
//   move X Y WIDTH HEIGHT   of an area as large as all outputs together
//   down BUTTON, up BUTTON, key CODE   in the numbers of the kernel
//   scroll X Y, lift        of fingers, in points; they leave
#define _GNU_SOURCE
#include <stdio.h>
#include <string.h>
#include <sys/mman.h>
#include <time.h>
#include <unistd.h>

#include "virtual-keyboard.h"
#include "wlr-virtual-pointer.h"

static struct zwlr_virtual_pointer_manager_v1* pointers;
static struct zwp_virtual_keyboard_manager_v1* keyboards;
static struct wl_seat* seat;

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

int main(void) {
  struct wl_display* display = wl_display_connect(NULL);
  if (!display) return fprintf(stderr, "no compositor\n"), 1;
  struct wl_registry* registry = wl_display_get_registry(display);
  static const struct wl_registry_listener listener = {global, globalGone};
  wl_registry_add_listener(registry, &listener, NULL);
  wl_display_roundtrip(display);
  if (!pointers || !keyboards || !seat) return fprintf(stderr, "no virtual devices here\n"), 1;
  struct zwlr_virtual_pointer_v1* mouse =
      zwlr_virtual_pointer_manager_v1_create_virtual_pointer(pointers, seat);
  struct zwp_virtual_keyboard_v1* keyboard = makeKeyboard();
  char line[80];
  while (fgets(line, sizeof line, stdin)) {
    unsigned x, y, width, height, code;
    double dx, dy;
    if (sscanf(line, "move %u %u %u %u", &x, &y, &width, &height) == 4) {
      zwlr_virtual_pointer_v1_motion_absolute(mouse, now(), x, y, width, height);
    } else if (sscanf(line, "down %u", &code) == 1) {
      zwlr_virtual_pointer_v1_button(mouse, now(), code, WL_POINTER_BUTTON_STATE_PRESSED);
    } else if (sscanf(line, "up %u", &code) == 1) {
      zwlr_virtual_pointer_v1_button(mouse, now(), code, WL_POINTER_BUTTON_STATE_RELEASED);
    } else if (sscanf(line, "scroll %lf %lf", &dx, &dy) == 2) {
      zwlr_virtual_pointer_v1_axis_source(mouse, WL_POINTER_AXIS_SOURCE_FINGER);
      if (dx != 0)
        zwlr_virtual_pointer_v1_axis(
            mouse, now(), WL_POINTER_AXIS_HORIZONTAL_SCROLL, wl_fixed_from_double(dx));
      if (dy != 0)
        zwlr_virtual_pointer_v1_axis(mouse, now(), WL_POINTER_AXIS_VERTICAL_SCROLL, wl_fixed_from_double(dy));
    } else if (!strncmp(line, "lift", 4)) {
      zwlr_virtual_pointer_v1_axis_source(mouse, WL_POINTER_AXIS_SOURCE_FINGER);
      zwlr_virtual_pointer_v1_axis_stop(mouse, now(), WL_POINTER_AXIS_VERTICAL_SCROLL);
      zwlr_virtual_pointer_v1_axis_stop(mouse, now(), WL_POINTER_AXIS_HORIZONTAL_SCROLL);
    } else if (sscanf(line, "key %u", &code) == 1 && keyboard) {
      zwp_virtual_keyboard_v1_key(keyboard, now(), code, WL_KEYBOARD_KEY_STATE_PRESSED);
      zwp_virtual_keyboard_v1_key(keyboard, now(), code, WL_KEYBOARD_KEY_STATE_RELEASED);
    }
    zwlr_virtual_pointer_v1_frame(mouse);
    if (wl_display_roundtrip(display) < 0) return 1;
    puts("done");
    fflush(stdout);
  }
  return 0;
}
