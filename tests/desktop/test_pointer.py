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
        self.desktop.wait_for_notch(*HOVERED)
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

    def pull(self, kind, data, button=1):
        """Begins a drag of another program. @return what asks whether that program has said a word"""
        source = self.desktop.start([BUILD / "tests/test-platform", "--drag", kind, data, 100, 500])

        def said(word):
            return word in source.log.read_text().split()
        wait_until(lambda: said("ready"), "the program to drag from")
        self.desktop.move_pointer(150, 550)
        self.desktop.press(button)
        self.steps = itertools.count(1)
        # Programs take a pull for a drag only after some way.
        wait_until(lambda: self.desktop.move_pointer(150 + 2 * next(self.steps), 550) or said("dragging"), "a drag")
        return said

    def drag_at(self, y, condition, what):
        # A source follows the pointer only once its drag is on: it must keep moving.
        wait_until(lambda: self.desktop.move_pointer(self.middle + next(self.steps) % 9, y) or condition(), what)

    def is_open(self):
        return self.desktop.top().notch()[:2] == (EXPANDED[0] - 12, EXPANDED[1])

    def test_a_dropped_file_is_kept(self):
        file = self.desktop.home / "plan für morgen.txt"
        file.write_text("x")
        self.desktop.start_overlay()
        said = self.pull("text/uri-list", file.as_uri())
        self.drag_at(110, self.is_open, "the drop area, near the notch")
        self.drag_at(80, lambda: said("accepted"), "a target")
        self.desktop.release()
        wait_until(lambda: self.desktop.defaults().get("trayItems") == [str(file)], "the file in the tray")
        self.desktop.wait_for_notch(*EXPANDED)

    def test_a_drag_by_another_button_opens_it_and_ends(self):
        self.desktop.start_overlay()
        self.pull("text/uri-list", "file:///tmp", button=2)
        self.drag_at(110, self.is_open, "the drop area")
        self.leave_notch()
        self.desktop.wait_for_notch(*HIDDEN)
        self.desktop.release(2)

    def test_nothing_but_files_is_taken(self):
        self.desktop.start_overlay()
        for kind, data in (("text/uri-list", "https://example.org/"), ("text/plain", "file:///tmp/a")):
            said = self.pull(kind, data)
            self.drag_at(10, lambda: next(self.steps) > 300, "some way over the notch")
            self.assertFalse(self.is_open())
            self.desktop.release()
            wait_until(lambda: said("dropped"), "the end of the drag")
            self.assertTrue(said("nothing"))


if __name__ == "__main__":
    unittest.main()
