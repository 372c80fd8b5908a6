"""Sound and the keys for it: what other programs and the keyboard change shows in the wings."""

import re
import unittest

from Xlib import X

from desktop import wait_until
from desktop_test import HIDDEN, DesktopTest
from picture import is_wallpaper

# The surface while it shows a level, in points.
LEVEL = (410, 24)

VOLUME_UP, VOLUME_DOWN, MUTE = 0x1008FF13, 0x1008FF11, 0x1008FF12


class Sound(DesktopTest):
    def control(self, *arguments):
        return self.desktop.control_audio(*arguments)

    def volume(self):
        """In the daemon's units, of which 65536 are full volume."""
        return int(re.search(r": (\d+) /", self.control("get-sink-volume", "speakers")).group(1))

    def set_volume(self, volume):
        self.control("set-sink-volume", "speakers", str(volume))

    def wait_for_level(self, change):
        """Changes something until the indicator is there: it may go again before a slow machine has looked."""
        def shows():
            change()
            return self.desktop.top().notch()[0] == LEVEL[0] - 12
        wait_until(shows, "the indicator")

    def wait_for_bar(self, volume, least, most):
        """Waits for that many lit pixels at that volume."""
        def look():
            self.set_volume(volume - 1)  # only what is new is shown
            self.set_volume(volume)
            return least <= self.lit(self.desktop.top()) <= most
        wait_until(look, f"a bar of {least} to {most}")

    def lit(self, picture):
        """How much of the level's bar is filled, in pixels. Its colours run from green to red."""
        row = [picture.pixel(x, 12) for x in range(self.middle + 110, self.middle + 192)]
        return sum(max(pixel) > 180 and min(pixel) < 90 and not is_wallpaper(pixel) for pixel in row)

    def keycode(self, keysym):
        return self.desktop.x.keysym_to_keycode(keysym)

    def send(self, keysym, *events):
        """All at once: a key that a slow machine lets go of too late would begin to repeat."""
        for event in events:
            self.desktop.x.xtest_fake_input(event, self.keycode(keysym))
        self.desktop.x.sync()

    def type(self, keysym):
        self.send(keysym, X.KeyPress, X.KeyRelease)

    def test_keys_change_the_volume_and_show_it(self):
        self.desktop.start_audio_daemon()
        self.desktop.start_overlay()
        self.wait_for_bar(32768, 35, 39)
        self.type(VOLUME_UP)
        # The overlay may have read the volume one unit lower, while the bar was looked at.
        wait_until(lambda: self.volume() in (36863, 36864), "a sixteenth more")
        self.type(MUTE)
        wait_until(lambda: "yes" in self.control("get-sink-mute", "speakers"), "silence")

        def shows_silence():
            picture = self.desktop.top()
            return picture.notch()[0] > 300 and self.lit(picture) == 0
        wait_until(shows_silence, "an empty bar")
        self.send(VOLUME_DOWN, X.KeyPress)
        wait_until(lambda: self.volume() == 0, "the repeating key to reach the bottom")
        self.send(VOLUME_DOWN, X.KeyRelease)
        self.desktop.wait_for_notch(*HIDDEN)

    def test_a_daemon_that_comes_later_or_again_is_followed(self):
        self.desktop.start_overlay()
        self.desktop.wait_for_notch(*HIDDEN)
        for _ in range(2):
            daemon = self.desktop.start_audio_daemon()
            self.wait_for_bar(65536, 70, 76)
            daemon.terminate()
            daemon.wait(30)
        self.desktop.wait_for_notch(*HIDDEN)
        self.wait_for_level(lambda: self.type(VOLUME_UP))  # though there is nothing to change
        self.assertEqual(self.desktop.overlay.log.read_bytes(), b"")

if __name__ == "__main__":
    unittest.main()
