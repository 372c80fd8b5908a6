#pragma once

namespace tarnwick {

/// The user's hands on the pointing device and the keyboard. Positions are in pixels of the X server.
class Hands {
 public:
  Hands();
  ~Hands();

  void movePointer(int x, int y);
  /// Without an event of the device.
  void warpPointer(int x, int y);
  void press(unsigned button = 1);
  void release(unsigned button = 1);
  void click(int x, int y, unsigned button = 1);

  /// Lets a key mean that keysym and nothing else.
  void mapKey(unsigned keycode, unsigned long keysym);
  void pressKey(unsigned keycode);
  void releaseKey(unsigned keycode);
  /// Presses and releases.
  void typeKey(unsigned keycode);

 private:
  /// The test extension has no other client library here than the old one, whose names clash with the
  /// toolkit's.
  void* display_;
};

}  // namespace tarnwick
