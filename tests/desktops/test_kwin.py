"""What the overlay does on sway, on KDE."""

import test_wayland
from kwin import KWin


class OnKWin(test_wayland.Wayland):
    def make_desktop(self):
        return KWin()
