"""The demonstration in the real overlay."""

import json
import socket
import subprocess
import unittest

from desktop import PROGRAM, wait_until
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

    def test_pictures_need_neither_display_nor_bus_nor_a_daemon_that_answers(self):
        daemon = self.desktop.home / "daemon"
        silent = socket.socket(socket.AF_UNIX)
        silent.bind(str(daemon))
        silent.listen()
        self.addCleanup(silent.close)
        for server in (daemon, self.desktop.home / "no-daemon"):
            folder = self.desktop.home / "pictures" / server.name
            environment = {"HOME": str(self.desktop.home), "PULSE_SERVER": f"unix:{server}"}
            result = subprocess.run([PROGRAM, "--snapshot", folder], env=environment, capture_output=True, timeout=20)
            self.assertEqual(result.returncode, 0, result.stderr)
            self.assertEqual(len(list(folder.glob("*.png"))), 14)
        result = self.desktop.run("--snapshot", str(daemon))
        self.assertEqual(result.returncode, 1)
        self.assertIn(b"could not write pictures", result.stderr)


if __name__ == "__main__":
    unittest.main()
