"""The notes under real keys: what is typed is kept, and the keyboard goes back to where it came from."""

import subprocess
import unittest

from desktop import BUILD, BUS_NAME, PROGRAM, wait_until
from desktop_test import EXPANDED, HIDDEN, DesktopTest


class Notes(DesktopTest):
    def setUp(self):
        super().setUp()
        self.file = self.desktop.home / ".local/share/Tarnwick/notes.txt"
        window = self.desktop.start([BUILD / "tests/test-platform", "--window", "other", 500, 500, 200, 200])
        wait_until(lambda: "ready" in window.log.read_text(), "another window")
        self.desktop.move_pointer(600, 600)
        self.desktop.click()
        wait_until(lambda: "pressed" in window.log.read_text(), "the click")
        self.other = self.focus()

    def focus(self):
        return self.desktop.x.get_input_focus().focus

    def keys(self, *names):
        subprocess.run(["xdotool", "key", "--delay", "30", *names], env=self.desktop.environment, check=True)

    def wait_for_text(self, text):
        wait_until(lambda: self.file.exists() and self.file.read_text() == text, f"“{text}” in the file")

    def open_and_click(self):
        self.desktop.open_page("notes")
        self.desktop.wait_for_notch(*EXPANDED)
        self.assertEqual(self.focus(), self.other, "opening alone takes no keyboard")
        self.desktop.move_pointer(self.middle, 100)
        self.desktop.click()
        wait_until(lambda: self.focus() != self.other, "the keyboard")

    def test_what_is_typed_is_kept_and_the_keyboard_given_back(self):
        # It has a key for the accent: one that xdotool makes for the moment programs may not know yet.
        subprocess.run(["setxkbmap", "us", "-variant", "intl"], env=self.desktop.environment, check=True)
        self.desktop.start_overlay()
        self.open_and_click()
        self.keys("c", "a", "f", "dead_acute", "e", "Return", "a")
        self.wait_for_text("café\na")
        self.keys("ctrl+z")
        self.wait_for_text("café\n")
        # The menu below the pointer, whose first line takes the rest back; the editor keeps the keyboard.
        self.desktop.click(3)
        self.desktop.wait_for(lambda picture: picture.notch()[1] > EXPANDED[1], "the menu")
        self.desktop.move_pointer(self.middle + 30, 100 + 22)
        self.desktop.click()
        wait_until(lambda: self.file.read_text() != "café\n", "what was undone")
        self.keys("ctrl+a", "x")
        self.wait_for_text("x")
        for _ in range(5):
            self.desktop.click(4)
            self.desktop.click(5)
        self.desktop.wait_for_notch(*EXPANDED)
        self.leave_notch()
        self.desktop.wait_for_notch(*HIDDEN)
        self.assertEqual(self.focus(), self.other)

        # By Escape, and by the end of the session with something not saved yet.
        self.open_and_click()
        self.keys("Escape")
        self.desktop.wait_for_notch(*HIDDEN)
        self.assertEqual(self.focus(), self.other)
        self.open_and_click()
        self.keys("ctrl+a", "y")
        self.desktop.overlay.terminate()
        self.desktop.overlay.wait()
        self.assertEqual(self.file.read_text(), "y")

    def test_a_command_brings_the_caret_and_a_kill_loses_no_more_than_a_moment(self):
        self.desktop.overlay = self.desktop.start([PROGRAM])
        # It has only just begun.
        wait_until(lambda: self.desktop.bus.name_has_owner(BUS_NAME), "its name")
        self.assertEqual(self.desktop.run("--open", "notes").returncode, 0)
        wait_until(lambda: self.focus() != self.other, "the keyboard")
        self.keys("a", "b")
        self.wait_for_text("ab")
        # The page goes and comes again: the caret is where it was.
        self.desktop.run("--close")
        wait_until(lambda: self.focus() == self.other, "the keyboard to be given back")
        self.desktop.run("--open", "notes")
        wait_until(lambda: self.focus() != self.other, "the keyboard")
        self.keys("ctrl+z", "c")
        self.wait_for_text("c")
        self.keys("d")
        self.desktop.kill_overlay()
        self.assertIn(self.file.read_text(), ("c", "cd"))


if __name__ == "__main__":
    unittest.main()
