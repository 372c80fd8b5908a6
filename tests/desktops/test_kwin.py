"""What the overlay does on sway, on KDE."""

import test_wayland
from kwin import KWin


class OnKWin(test_wayland.Wayland):
    # What only sway can be asked for: fingers, outputs that change, windows by their process.
    test_two_fingers_open_and_close_it = None
    test_it_follows_its_output = None
    test_a_click_on_a_session_leads_to_its_terminal = None

    def make_desktop(self):
        return KWin()
