"""The pages of the open notch, on a real player and a real audio daemon."""

import re
import unittest

from desktop import wait_until
from desktop_test import EXPANDED, DesktopTest
from media_player import MediaPlayer


class Pages(DesktopTest):
    def at(self, x, y):
        """Moves the pointer to a point of the body, from the surface's left edge."""
        self.desktop.move_pointer(self.middle - EXPANDED[0] // 2 + x, y)

    def drag_out(self, x, y):
        """Drags from a point of the body to the screen's lower right corner, and holds on to it."""
        self.at(x, y)
        self.desktop.press()
        width, height = self.desktop.size
        for step in range(1, 41):
            self.desktop.move_pointer(self.middle + (width // 2 - 5) * step // 40, y + (height - y - 5) * step // 40)
        self.desktop.wait_for_notch(*EXPANDED)

    def open_audio_page(self):
        self.desktop.open_page("audio")
        left = self.middle - EXPANDED[0] // 2
        self.desktop.wait_for(lambda picture: max(picture.pixel(left + 364, 57)) > 200, "the volume's slider")

    def wait_for_closed_notch(self):
        self.desktop.wait_for(lambda picture: picture.notch()[1] <= 24, "the closed notch")

    def volume(self):
        """In percent."""
        return int(re.search(r"(\d+)%", self.desktop.control_audio("get-sink-volume", "speakers")).group(1))

    def test_a_drag_out_of_the_body_holds_it_open_and_takes_effect_once(self):
        self.desktop.start_audio_daemon()
        self.desktop.control_audio("set-sink-volume", "speakers", "30%")
        player = MediaPlayer("one", self.desktop.environment, status="Playing",
                             metadata={"title": "Song", "length": 200, "trackid": "/song"})
        self.addCleanup(player.kill)
        self.desktop.start_overlay()
        self.desktop.open_page("home")
        self.drag_out(150, 85)
        self.desktop.release()
        self.assertEqual(player.next_call(), ["SetPosition", "/song", 200_000_000])
        self.wait_for_closed_notch()
        self.desktop.open_page("home")
        self.at(230, 138)
        self.desktop.click()
        self.assertEqual(player.next_call(), ["PlayPause"], "it was told of one position only")
        self.leave_notch()
        self.wait_for_closed_notch()

        self.open_audio_page()
        self.drag_out(420, 57)
        wait_until(lambda: self.volume() == 100, "full volume")
        self.desktop.release()
        self.wait_for_closed_notch()
        self.open_audio_page()
        self.at(420, 57)
        for _ in range(3):
            self.desktop.click(5)
        wait_until(lambda: self.volume() == 85, "three clicks of the wheel")
        self.assertEqual(self.desktop.overlay.log.read_bytes(), b"")


if __name__ == "__main__":
    unittest.main()
