"""The demonstration in the real overlay."""

import json
import unittest

from desktop import wait_until
from desktop_test import EXPANDED, HIDDEN, DesktopTest

WORKING = {"session_id": "showcase-1", "hook_event_name": "UserPromptSubmit", "prompt": "Go"}


class Demonstration(DesktopTest):
    def setUp(self):
        super().setUp()
        self.file = self.desktop.home / "mine.txt"
        self.file.write_text("mine")
        self.notes = self.desktop.home / ".local/share/Tarnwick/notes.txt"
        self.notes.parent.mkdir(parents=True)
        self.notes.write_text("my notes")
        self.defaults = {"trayItems": [str(self.file)]}

    def stage(self):
        for command in (["begin"], ["trayadd"], ["type", "not mine"], ["expand", "notes"]):
            self.desktop.run("--showcase", *command)
        self.desktop.wait_for_notch(*EXPANDED)
        wait_until((self.desktop.home / ".cache/Tarnwick/showcase/Mockup.png").exists, "the file that is shown")

    def assert_untouched(self):
        self.assertEqual(self.notes.read_text(), "my notes")
        self.assertEqual(self.desktop.defaults()["trayItems"], [str(self.file)])

    def test_a_kill_or_a_logout_in_its_midst_loses_nothing(self):
        self.desktop.start_overlay(self.defaults)
        self.stage()
        self.desktop.kill_overlay()
        self.assert_untouched()
        overlay = self.desktop.start_overlay()
        self.stage()
        overlay.terminate()
        self.assertEqual(overlay.wait(10), 0)
        self.assert_untouched()

    def test_it_ends_as_if_it_had_not_been(self):
        self.desktop.start_overlay(self.defaults)
        self.stage()
        self.desktop.run("--hook", stdin=json.dumps(WORKING).encode())
        self.desktop.run("--showcase", "end")
        self.desktop.wait_for_notch(*HIDDEN)
        self.assert_untouched()


if __name__ == "__main__":
    unittest.main()
