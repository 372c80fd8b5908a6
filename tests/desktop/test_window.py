"""The overlay's window among others."""

import signal
import unittest

from Xlib import X

from desktop import BUS_NAME, PROGRAM, wait_until
from desktop_test import BANNER, CLAUDE, EXPANDED, HIDDEN, HOVERED, DesktopTest


class Window(DesktopTest):
    def test_there_is_one_overlay_and_a_signal_ends_it(self):
        overlay = self.desktop.start_overlay(arguments=["--unknown", "-platform", "offscreen"])
        self.hover_notch()
        self.desktop.wait_for_notch(*HOVERED)
        self.leave_notch()
        self.desktop.wait_for_notch(*HIDDEN)
        second = self.desktop.run()
        self.assertEqual((second.returncode, second.stdout, second.stderr), (0, b"", b""))
        self.desktop.wait_for_notch(*EXPANDED)  # it is opened instead
        overlay.terminate()
        self.assertEqual(overlay.wait(30), 0)

    def test_it_ends_with_the_display_and_does_not_start_without_one(self):
        overlay = self.desktop.start_overlay()
        self.desktop.kill_display()
        self.assertEqual(overlay.wait(30), 1)
        result = self.desktop.run()
        self.assertEqual(result.returncode, 1)
        self.assertIn(b"no X display", result.stderr)

    def test_a_silent_bus_does_not_hold_it_up(self):
        self.desktop.bus_daemon.send_signal(signal.SIGSTOP)
        overlay = self.desktop.start([PROGRAM])
        self.hover_notch()
        self.desktop.wait_for_notch(*HOVERED)
        self.desktop.bus_daemon.send_signal(signal.SIGCONT)
        wait_until(lambda: self.desktop.bus.name_has_owner(BUS_NAME), "it to come to the bus")
        owner = self.desktop.bus.call_blocking("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                                               "GetConnectionUnixProcessID", "s", [BUS_NAME])
        self.assertEqual(owner, overlay.pid)
        self.desktop.wait_for_notch(*HOVERED)

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
