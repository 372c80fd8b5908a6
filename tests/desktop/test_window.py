"""The overlay's window among others."""

import unittest

from Xlib import X

from desktop import wait_until
from desktop_test import BANNER, CLAUDE, HIDDEN, DesktopTest


class Window(DesktopTest):
    def test_asked_for_pictures_it_says_that_it_has_none(self):
        result = self.desktop.run("--snapshot", "pictures")
        self.assertEqual(result.returncode, 1)
        self.assertIn(b"--snapshot", result.stderr)

    def test_a_window_that_fills_the_screen_hides_the_wings_but_not_a_banner(self):
        self.desktop.start_overlay()
        self.desktop.hook(hook_event_name="UserPromptSubmit", session_id="a")
        self.desktop.wait_for_notch(*CLAUDE)
        window = self.full_screen_window()
        self.desktop.wait_for_notch(*HIDDEN)
        self.desktop.hook(hook_event_name="Notification", session_id="a", message="May I?")
        self.desktop.wait_for_notch(*BANNER)
        window.destroy()
        self.desktop.x.sync()
        self.desktop.wait_for_notch(*CLAUDE)

    def full_screen_window(self):
        """A window as a film player has it, in the wallpaper's colour."""
        display, (width, height) = self.desktop.x, self.desktop.size
        window = self.desktop.root.create_window(0, 0, width, height, 0, display.screen().root_depth,
                                                 background_pixmap=self.desktop.wallpaper)
        state, full = (display.intern_atom(name) for name in ("_NET_WM_STATE", "_NET_WM_STATE_FULLSCREEN"))
        window.change_property(state, display.intern_atom("ATOM"), 32, [full])
        window.map()
        wait_until(lambda: window.get_attributes().map_state == X.IsViewable
                   and window.get_geometry().height == height, "the full-screen window")
        return window


if __name__ == "__main__":
    unittest.main()
