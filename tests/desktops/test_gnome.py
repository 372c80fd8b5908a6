"""The overlay on GNOME, through XWayland."""

from desktop import wait_until
from desktop_test import DesktopTest
from gnome import Gnome
from test_wayland import start_neighbour


class OnGnome(DesktopTest):
    def make_desktop(self):
        return Gnome()

    def click_reaches(self, neighbour, x, y):
        self.desktop.move_pointer(x, y)
        # The shell may still be showing the window.
        wait_until(lambda: self.desktop.click() or f"click {x} " in neighbour.log.read_text(),
                   f"a click at {x}, {y} to reach the other window")

    def wait_for_height(self, is_right):
        """The bar is as black as the notch: its width cannot be told on it."""
        self.desktop.wait_for(lambda picture: is_right(picture.notch()[1]), "the notch")

    def test_clicks_beside_it_reach_other_windows(self):
        neighbour = start_neighbour(self.desktop)
        wait_until(lambda: "ready" in neighbour.log.read_text(), "the other window")
        self.desktop.start_overlay()
        self.click_reaches(neighbour, self.middle + 1, 60)
        self.desktop.run("--open")
        self.wait_for_height(lambda height: height > 100)
        for x, y in ((self.middle - 300, 100), (self.middle + 2, 300)):
            self.click_reaches(neighbour, x, y)
        self.desktop.run("--close")
        self.wait_for_height(lambda height: height < 40)
