"""The pointer on the notch: hovering, tapping, leaving, resting, dropping, and clicks that are not for it."""

import itertools
import unittest

from Xlib import X

from desktop import BUILD, wait_until
from desktop_test import EXPANDED, HIDDEN, HOVERED, DesktopTest
from picture import WALLPAPER


class Pointer(DesktopTest):
    def cover_top_with_window(self):
        """An ordinary window in the wallpaper's colour, under all that the overlay may cover."""
        x_display = self.desktop.x
        red, green, blue = WALLPAPER
        window = self.desktop.root.create_window(
            self.middle - 470, 0, 940, 380, 0, x_display.screen().root_depth, override_redirect=True,
            background_pixel=red << 16 | green << 8 | blue,
            event_mask=X.ButtonPressMask | X.ButtonReleaseMask | X.ExposureMask)
        window.map()
        wait_until(lambda: self.events(X.Expose), "the window below")
        return window

    def events(self, kind):
        found = []
        while self.desktop.x.pending_events():
            event = self.desktop.x.next_event()
            if event.type == kind:
                found.append((event.root_x, event.root_y) if kind == X.ButtonPress else event)
        return found

    def test_hover_tap_and_leave(self):
        self.desktop.start_overlay()
        self.desktop.wait_for_notch(*HIDDEN)
        self.hover_notch()
        self.desktop.wait_for_notch(*HOVERED)
        self.leave_notch()
        self.desktop.wait_for_notch(*HIDDEN)
        self.hover_notch()
        self.desktop.click()
        self.desktop.wait_for_notch(*EXPANDED)
        self.leave_notch()
        self.desktop.wait_for_notch(*HIDDEN)

    def test_clicks_beside_the_surface_reach_the_window_below(self):
        self.cover_top_with_window()
        self.desktop.start_overlay()
        focus = self.desktop.x.get_input_focus().focus
        self.hover_notch()
        self.desktop.wait_for_notch(*HOVERED)
        self.desktop.click()
        self.desktop.wait_for_notch(*EXPANDED)
        # A click into the open body stays there.
        self.desktop.move_pointer(self.middle + 200, 120)
        self.desktop.click()
        # The pointer goes straight from the open body to a place beside it, as fast as a hand can.
        beside = [(self.middle - EXPANDED[0] // 2 - 12, 60), (self.middle, EXPANDED[1] + 12), (self.middle + 400, 5)]
        for place in beside:
            self.desktop.move_pointer(*place)
            self.desktop.click()
        below = []
        wait_until(lambda: below.extend(self.events(X.ButtonPress)) or len(below) >= len(beside),
                   f"three clicks on the window below; it had {below}")
        self.assertEqual(below, beside)
        self.desktop.wait_for_notch(*HIDDEN)
        # Where the body was, and where the surface that is not to be seen is not hovered.
        self.desktop.move_pointer(self.middle, 100)
        self.desktop.click()
        self.assertEqual(wait_until(lambda: self.events(X.ButtonPress), "a click where the body was"),
                         [(self.middle, 100)])
        self.assertEqual(self.desktop.x.get_input_focus().focus, focus, "the overlay took the focus")

    def test_a_dropped_file_is_kept(self):
        file = self.desktop.home / "plan für morgen.txt"
        file.write_text("x")
        self.desktop.start_overlay()
        source = self.desktop.start([BUILD / "tests/test-platform", "--drag", "text/uri-list", file.as_uri(), 100, 500])

        def said(word):
            return word in source.log.read_text().split()
        wait_until(lambda: said("ready"), "the program to drag from")
        self.desktop.move_pointer(150, 550)
        self.desktop.press()
        steps = itertools.count(1)
        # Programs take a pull for a drag only after some way.
        wait_until(lambda: self.desktop.move_pointer(150 + 2 * next(steps), 550) or said("dragging"), "a drag")
        # Near the notch, but not on it. The source follows the pointer only once its drag is on: it must keep moving.
        wait_until(lambda: self.desktop.move_pointer(self.middle + next(steps) % 9, 110)
                   or self.desktop.top().notch()[:2] == (EXPANDED[0] - 12, EXPANDED[1]), "the drop area")
        wait_until(lambda: self.desktop.move_pointer(self.middle, 80 + next(steps) % 9) or said("accepted"), "a target")
        self.desktop.release()
        wait_until(lambda: self.desktop.defaults().get("trayItems") == [str(file)], "the file in the tray")
        self.desktop.wait_for_notch(*EXPANDED)


if __name__ == "__main__":
    unittest.main()
