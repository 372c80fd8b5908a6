#include "platform/Hands.h"

#include <X11/Xlib.h>
#include <X11/extensions/XTest.h>

namespace tarnwick {
namespace {

Display* opened(void* display) { return static_cast<Display*>(display); }

}  // namespace

Hands::Hands() : display_(XOpenDisplay(nullptr)) {}

Hands::~Hands() { XCloseDisplay(opened(display_)); }

void Hands::movePointer(int x, int y) {
  XTestFakeMotionEvent(opened(display_), -1, x, y, CurrentTime);
  XSync(opened(display_), False);
}

void Hands::warpPointer(int x, int y) {
  XWarpPointer(opened(display_), None, DefaultRootWindow(opened(display_)), 0, 0, 0, 0, x, y);
  XSync(opened(display_), False);
}

void Hands::press(unsigned button) {
  XTestFakeButtonEvent(opened(display_), button, True, CurrentTime);
  XSync(opened(display_), False);
}

void Hands::release(unsigned button) {
  XTestFakeButtonEvent(opened(display_), button, False, CurrentTime);
  XSync(opened(display_), False);
}

void Hands::click(int x, int y, unsigned button) {
  movePointer(x, y);
  press(button);
  release(button);
}

void Hands::mapKey(unsigned keycode, unsigned long keysym) {
  XChangeKeyboardMapping(opened(display_), static_cast<int>(keycode), 1, &keysym, 1);
  XSync(opened(display_), False);
}

void Hands::pressKey(unsigned keycode) {
  XTestFakeKeyEvent(opened(display_), keycode, True, CurrentTime);
  XSync(opened(display_), False);
}

void Hands::releaseKey(unsigned keycode) {
  XTestFakeKeyEvent(opened(display_), keycode, False, CurrentTime);
  XSync(opened(display_), False);
}

void Hands::typeKey(unsigned keycode) {
  pressKey(keycode);
  releaseKey(keycode);
}

}  // namespace tarnwick
