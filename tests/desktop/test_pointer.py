"""The pointer on the notch: hovering, tapping, leaving, resting, dropping, and clicks that are not for it."""

import time
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

    def test_a_resting_pointer_opens_the_body_when_that_is_wanted(self):
        self.desktop.start_overlay(defaults={"expandOnHover.v2": True})
        self.hover_notch()
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

    def test_a_click_into_the_open_body_stays_there(self):
        self.cover_top_with_window()
        self.desktop.start_overlay()
        self.hover_notch()
        self.desktop.click()
        self.desktop.wait_for_notch(*EXPANDED)
        self.desktop.move_pointer(self.middle + 200, 120)
        self.desktop.click()
        self.desktop.move_pointer(self.middle + 440, 200)
        self.desktop.click()
        # The second click is the first that the window below hears of.
        self.assertEqual(wait_until(lambda: self.events(X.ButtonPress), "the click outside"),
                         [(self.middle + 440, 200)])

    def test_a_dropped_file_is_kept(self):
        file = self.desktop.home / "plan für morgen.txt"
        file.write_text("x")
        self.desktop.start_overlay()
        ready = self.desktop.root_folder / "ready"
        self.desktop.start([BUILD / "tests/desktop/drag-source", file, ready])
        wait_until(ready.exists, "the program to drag from")
        self.desktop.move_pointer(150, 550)
        self.desktop.press()
        # As a hand pulls: the sixtieth of a second in which the overlay looks once is shorter than the way after which
        # programs take a pull for a drag.
        for step in range(1, 13):
            time.sleep(0.02)
            self.desktop.move_pointer(150 + 2 * step, 550)
        wait_until(lambda: self.desktop.selection_is_owned("XdndSelection"), "the drag to start")
        # Near the notch, but not on it, the drop area opens.
        self.desktop.move_pointer(self.middle, 110)
        self.desktop.wait_for_notch(*EXPANDED)
        self.desktop.move_pointer(self.middle, 90)
        self.desktop.move_pointer(self.middle, 80)
        wait_until(lambda: (ready.with_suffix(".accepted")).exists(), "the overlay to accept the files")
        self.desktop.release()
        wait_until(lambda: self.desktop.defaults().get("trayItems") == [str(file)], "the file in the tray")
        self.desktop.wait_for_notch(*EXPANDED)


if __name__ == "__main__":
    unittest.main()
