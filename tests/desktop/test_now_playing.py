"""A player on the session bus shows in the wings of the real overlay, and hears what the fingers want."""

import unittest

from desktop import wait_until
from desktop_test import HIDDEN, DesktopTest
from media_player import MediaPlayer
from picture import Picture

NOW_PLAYING = (290, 24)
COVER = (220, 40, 120)


class NowPlaying(DesktopTest):
    def cover(self, colour=COVER):
        """An image file of that colour, 64 × 64."""
        path = self.desktop.root_folder / ("cover %d %d %d.png" % colour)
        red, green, blue = colour
        Picture(0, 0, 64, 64, bytes((blue, green, red, 255)) * 64 * 64).save(path)
        return path.as_uri()

    def play(self, **metadata):
        player = MediaPlayer("one", self.desktop.environment, status="Playing",
                             metadata={"title": "Song", "length": 200, **metadata})
        self.addCleanup(player.kill)
        return player

    def wait_for_cover(self, colour=COVER):
        def shown(picture):
            _, _, left = picture.notch()
            return picture.count(colour, left, 0, left + 40, 24) > 200
        self.desktop.wait_for(shown, f"a cover of {colour}")

    def equalizer(self):
        """The area of the bars in the right wing."""
        right = self.middle + NOW_PLAYING[0] // 2
        return self.desktop.picture(right - 40, 0, 34, 24)

    def test_a_track_shows_its_cover_and_dancing_bars_until_it_pauses(self):
        player = self.play(art=self.cover())
        self.desktop.start_overlay()
        self.desktop.wait_for_notch(*NOW_PLAYING)
        self.wait_for_cover()
        first = self.equalizer().data
        wait_until(lambda: self.equalizer().data != first, "the bars to dance")
        player.play(metadata={"title": "Next", "art": self.cover((30, 160, 60))})
        self.wait_for_cover((30, 160, 60))
        player.play(status="Paused")
        self.desktop.wait_for_notch(*HIDDEN)
        player.play(status="Playing")
        self.desktop.wait_for_notch(*NOW_PLAYING)
        player.kill()
        self.desktop.wait_for_notch(*HIDDEN)


if __name__ == "__main__":
    unittest.main()
