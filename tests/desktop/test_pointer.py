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

    def pull_file_to_notch(self, source):
        """Whether the drop area has opened for it. A button that is held before the overlay has looked does not count,
        and on a slow machine a pull may be that fast."""
        pulls = source.log.read_text().split().count("dragging")
        self.desktop.move_pointer(150, 550)
        self.desktop.press()
        steps = itertools.count(1)
        # Programs take a pull for a drag only after some way.
        wait_until(lambda: self.desktop.move_pointer(150 + 2 * next(steps), 550)
                   or source.log.read_text().split().count("dragging") > pulls, "the drag to start")
        # Near the notch, but not on it.
        self.desktop.move_pointer(self.middle, 110)
        try:
            return self.desktop.wait_for(lambda picture: picture.notch()[1] > 100, "the drop area", patience=3)
        except AssertionError:
            self.desktop.release()
            return False

    def test_a_dropped_file_is_kept(self):
        file = self.desktop.home / "plan für morgen.txt"
        file.write_text("x")
        self.desktop.start_overlay()
        source = self.desktop.start([BUILD / "tests/test-platform", "--drag", "text/uri-list", file.as_uri(), 100, 500])

        def wait_for_source(word):
            wait_until(lambda: word in source.log.read_text().split(), f"the program to drag from to be {word}")
        wait_for_source("ready")
        wait_until(lambda: self.pull_file_to_notch(source), "a file near the notch to open it")
        self.desktop.wait_for_notch(*EXPANDED)
        self.desktop.move_pointer(self.middle, 90)
        self.desktop.move_pointer(self.middle, 80)
        wait_for_source("accepted")
        self.desktop.release()
        wait_until(lambda: self.desktop.defaults().get("trayItems") == [str(file)], "the file in the tray")
        self.desktop.wait_for_notch(*EXPANDED)


if __name__ == "__main__":
    unittest.main()
