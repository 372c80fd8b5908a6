"""The settings window, worked with the keyboard, and what it leaves on disk."""

import json
import shlex
import unittest

from Xlib import XK, X

from desktop import PROGRAM, wait_until
from desktop_test import DesktopTest

# The rows from the top, as Tab comes to them.
ROWS = ["expandOnHover.v2", "hideInFullscreen", "login", "showNowPlaying", "batteryAlerts", "bluetoothAlerts",
        "calendarEnabled", "replaceHUD", "toggleShortcut", "nextShortcut", "claudeSounds", "answerPermissions",
        "hooks", "quit"]


class Settings(DesktopTest):
    def setUp(self):
        super().setUp()
        self.place = None
        self.autostart = self.desktop.home / ".config/autostart/dev.tarnwick.Tarnwick.desktop"
        self.hooks = self.desktop.home / ".claude/settings.json"

    def windows(self):
        """Those that the window manager knows."""
        atom = self.desktop.x.intern_atom("_NET_CLIENT_LIST")
        windows = self.desktop.root.get_full_property(atom, X.AnyPropertyType)
        return windows.value.tolist() if windows else []  # no window has been opened yet

    def wait_for_window(self):
        def focused():
            windows, focus = self.windows(), self.desktop.x.get_input_focus().focus
            return windows if focus != X.NONE and getattr(focus, "id", None) in windows else None
        found = wait_until(focused, "the settings window to have the keyboard")
        self.assertEqual(len(found), 1)
        return self.desktop.x.create_resource_object("window", found[0])

    def wait_for_body(self, is_open=True):
        """Of the notch. The settings window may lie below it: that there is its button tells."""
        place = (self.middle + 238, 2, self.middle + 262, 22)
        self.desktop.wait_for(lambda picture: (picture.count((153, 153, 153), *place, tolerance=12) > 40) == is_open,
                              "the body")

    def press(self, keysym):
        code = self.desktop.x.keysym_to_keycode(keysym)
        for event in (X.KeyPress, X.KeyRelease):
            self.desktop.x.xtest_fake_input(event, code)
        self.desktop.x.sync()

    def use(self, row):
        """Goes to the row with the keyboard and presses its control."""
        steps = ROWS.index(row) + 1 if self.place is None else ROWS.index(row) - ROWS.index(self.place)
        self.assertGreater(steps, 0)
        for _ in range(steps):
            self.press(XK.XK_Tab)
        self.place = row
        self.press(XK.XK_space)

    def test_the_button_opens_one_window_in_the_middle(self):
        overlay = self.desktop.start_overlay()
        for _ in range(2):
            self.hover_notch()
            wait_until(self.desktop.height_open_to_pointer, "the notch to come")
            self.desktop.click()
            self.wait_for_body()
            self.desktop.move_pointer(self.middle + 250, 12)
            self.desktop.click()
            window = self.wait_for_window()
            self.leave_notch()
            self.wait_for_body(False)
        place = window.translate_coords(self.desktop.root, 0, 0)
        size = window.get_geometry()
        self.assertEqual((size.width, size.height), (460, 560))
        self.assertAlmostEqual(-place.x + size.width / 2, self.middle, delta=12)
        self.assertAlmostEqual(-place.y + size.height / 2, self.desktop.size[1] / 2, delta=40)
        self.press(XK.XK_Escape)
        wait_until(lambda: not self.windows(), "the window to close")
        self.assertIsNone(overlay.poll())

    def test_every_switch_is_kept_and_works_at_once(self):
        overlay = self.desktop.start_overlay(arguments=["--settings"])
        self.wait_for_window()
        for row in ROWS:
            # Keys are recorded there.
            if row.endswith("Shortcut"):
                continue
            self.use(row)
            if row == "login":
                wait_until(self.autostart.exists, "the login item")
                line = next(line for line in self.autostart.read_text().splitlines() if line.startswith("Exec="))
                self.assertEqual(shlex.split(line[5:]), [str(PROGRAM.resolve())])
                self.press(XK.XK_space)
                wait_until(lambda: not self.autostart.exists(), "the login item to go")
            elif row == "hooks":
                wait_until(lambda: self.hooks.exists() and "--hook" in self.hooks.read_text(), "the hooks")
                def gone():
                    # Not heard while the program that installs them runs.
                    self.press(XK.XK_space)
                    return "--hook" not in self.hooks.read_text()
                wait_until(gone, "the hooks to go")
            elif row == "quit":
                self.assertEqual(overlay.wait(30), 0)
            else:
                default = row != "expandOnHover.v2"
                wait_until(lambda: self.desktop.defaults().get(row) is not default, f"{row} to change")
            if row == "expandOnHover.v2":
                self.hover_notch()
                self.wait_for_body()
                self.leave_notch()
                self.wait_for_body(False)
        self.assertEqual(self.desktop.defaults(), {row: row == "expandOnHover.v2" for row in ROWS
                                                   if row not in ("login", "hooks", "quit")
                                                   and not row.endswith("Shortcut")})

    def test_hooks_that_cannot_be_installed_are_told_of(self):
        self.hooks.parent.mkdir()
        self.hooks.write_text("[]")
        self.desktop.start_overlay()
        for _ in range(2):
            self.assertEqual(self.desktop.run("--settings").returncode, 0)
            window = self.wait_for_window()
        self.use("hooks")
        place = window.translate_coords(self.desktop.root, 0, 0)

        def tells():
            picture = self.desktop.picture(-place.x, -place.y, 460, 560)
            return picture.count((192, 42, 32), -place.x, -place.y, -place.x + 460, -place.y + 560) > 20
        wait_until(tells, "the red line that says why")
        self.assertEqual(json.loads(self.hooks.read_text()), [])


if __name__ == "__main__":
    unittest.main()
