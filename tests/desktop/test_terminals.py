"""A click on a session leads to its terminal: the window, and in it the pane."""

import subprocess
import sys
import time
import unittest

from desktop import EXPANDED, PROGRAM, wait_until
from desktop_test import DesktopTest

# Stands for Claude Code in a terminal: runs a hook through the shell, says when it has ended, and stays.
PROGRAM_IN_TERMINAL = """
import json, subprocess, sys, time
program, session, said = sys.argv[1:]
event = {"session_id": session, "cwd": "/src/" + session, "hook_event_name": "UserPromptSubmit"}
subprocess.run(["sh", "-c", "'" + program + "' --hook"], input=json.dumps(event).encode())
open(said, "w").close()
time.sleep(1000)
"""


class Terminals(DesktopTest):
    def setUp(self):
        super().setUp()
        self.desktop.start_overlay()
        self.socket = self.desktop.root_folder / "tmux"
        self.addCleanup(self.tmux, "kill-server")

    def tmux(self, *arguments):
        return subprocess.run(["tmux", "-S", self.socket, *arguments], env=self.desktop.environment,
                              capture_output=True, text=True).stdout.strip()

    def session(self, name):
        """The command that plays a session, and a condition: its hook has been run."""
        said = self.desktop.root_folder / f"{name}-has-said-it"
        return [sys.executable, "-c", PROGRAM_IN_TERMINAL, str(PROGRAM), name, str(said)], said.exists

    def start_terminal(self, title, *command):
        self.desktop.start(["xterm", "-T", title, "-geometry", "60x10+40+400", "-e", *command])
        self.wait_for_active(title)

    def active(self):
        window = self.desktop._property(self.desktop.root, "_NET_ACTIVE_WINDOW")
        if not window or not window.value[0]:
            return None
        return self.desktop.x.create_resource_object("window", window.value[0]).get_wm_name()

    def wait_for_active(self, title):
        wait_until(lambda: self.active() == title, f"the window {title} to be active")

    def click_row(self, number):
        self.desktop.open_page("claude")
        self.desktop.move_pointer(self.middle, 50 + 42 * number)
        # The symbol says that the row leads somewhere.
        right = self.middle + EXPANDED[0] // 2
        area = (right - 48, 40 + 42 * number, right - 32, 60 + 42 * number)
        self.desktop.wait_for(lambda picture: picture.count((180, 180, 180), *area, tolerance=40) > 8, "the symbol")
        self.desktop.click()

    def test_a_click_shows_the_window_and_the_pane(self):
        shop, shop_has_said_it = self.session("shop")
        bakery, bakery_has_said_it = self.session("bakery")
        self.start_terminal("panes", "tmux", "-S", self.socket, "-f", "/dev/null", "new-session", *shop)
        wait_until(shop_has_said_it, "the session in tmux")
        self.tmux("new-window", "sleep", "1000")
        self.assertEqual(self.tmux("display-message", "-p", "#{window_index}"), "1")
        self.start_terminal("plain", *bakery)
        wait_until(bakery_has_said_it, "the session beside it")

        # The one heard of last is on top.
        self.click_row(1)
        start = time.monotonic()
        self.wait_for_active("panes")
        print(f"to the pane in {1000 * (time.monotonic() - start):.0f} ms")
        wait_until(lambda: self.tmux("display-message", "-p", "#{window_index}") == "0", "the window of the pane")
        self.leave_notch()
        self.desktop.wait_for_notch(290, 24)
        self.click_row(0)
        start = time.monotonic()
        self.wait_for_active("plain")
        print(f"to the window in {1000 * (time.monotonic() - start):.0f} ms")


if __name__ == "__main__":
    unittest.main()
