"""Claude Code runs the installed hooks, and the notch shows what its sessions do."""

import json
import subprocess
import time
import unittest
from pathlib import Path

from claude_code import ClaudeCode
from desktop import PATIENCE, PROGRAM, wait_until
from desktop_test import BANNER, CLAUDE, EXPANDED, HIDDEN, DesktopTest
from picture import GREEN, ORANGE, YELLOW


class Sessions(DesktopTest):
    def setUp(self):
        super().setUp()
        self.desktop.start_overlay()
        installed = self.desktop.run("--install-hooks")
        self.assertEqual(installed.returncode, 0, installed.stderr)

    def left_wing(self, picture):
        _, _, left = picture.notch()
        return left, 2, left + 44, 22

    def right_wing(self, picture):
        width, _, left = picture.notch()
        return left + width - 44, 2, left + width, 22

    def wait_for_wings(self, left, right):
        self.desktop.wait_for(lambda picture: picture.count(left, *self.left_wing(picture)) > 20
                              and picture.count(right, *self.right_wing(picture)) > 5,
                              f"wings with {left} and {right}")

    def test_one_session_from_prompt_to_end(self):
        claude = ClaudeCode(self.desktop, "one")
        claude.fire("SessionStart", source="startup")
        self.desktop.wait_for_notch(*HIDDEN)
        claude.fire("UserPromptSubmit", prompt="Mend the build")
        self.desktop.wait_for_notch(*CLAUDE)
        self.wait_for_wings(ORANGE, ORANGE)
        claude.fire("PreToolUse", tool_name="Bash", tool_input={"command": "make"})
        claude.fire("Notification", notification_type="permission_prompt",
                    message="Claude needs your permission to use Bash")
        self.desktop.wait_for_notch(*BANNER)
        self.wait_for_wings(ORANGE, YELLOW)
        # The banner goes by itself; the hand stays as long as the session waits.
        self.desktop.wait_for_notch(*CLAUDE)
        self.wait_for_wings(ORANGE, YELLOW)
        claude.fire("PostToolUse", tool_name="Bash", tool_input={"command": "make"})
        self.wait_for_wings(ORANGE, ORANGE)
        claude.fire("Stop")
        self.desktop.wait_for_notch(*BANNER)
        self.wait_for_wings(ORANGE, GREEN)
        self.desktop.wait_for_notch(*HIDDEN)

    def test_several_sessions_are_counted_and_one_that_waits_wins(self):
        def digits(picture):
            width, _, left = picture.notch()
            return picture.count((178, 178, 178), left + width - 16, 5, left + width, 20, tolerance=40)

        first, second = ClaudeCode(self.desktop, "1"), ClaudeCode(self.desktop, "2", "/src/bakery")
        first.fire("UserPromptSubmit", prompt="a")
        self.desktop.wait_for_notch(*CLAUDE)
        self.wait_for_wings(ORANGE, ORANGE)
        self.assertEqual(digits(self.desktop.top()), 0)
        second.fire("UserPromptSubmit", prompt="b")
        self.desktop.wait_for(lambda picture: digits(picture) > 5, "the count of sessions")
        second.fire("Notification", message="May I?")
        self.desktop.wait_for_notch(*BANNER)
        second.fire("SessionEnd", reason="exit")
        self.desktop.wait_for_notch(*CLAUDE)
        self.wait_for_wings(ORANGE, ORANGE)
        first.fire("SessionEnd", reason="exit")
        self.desktop.wait_for_notch(*HIDDEN)

    def test_a_tap_on_a_waiting_session_opens_the_list_of_sessions(self):
        ClaudeCode(self.desktop, "one").fire("UserPromptSubmit", prompt="a")
        ClaudeCode(self.desktop, "two").fire("Notification", message="May I?")
        self.desktop.wait_for_notch(*BANNER)
        self.hover_notch()
        self.desktop.click()
        self.desktop.wait_for_notch(*EXPANDED)
        # One row has the hand, and below it one has the sparkle.
        left = self.middle - EXPANDED[0] // 2
        rows = [(left + 10, top, left + 70, top + 40) for top in (34, 76)]
        self.desktop.wait_for(lambda picture: picture.count(YELLOW, *rows[0]) > 10
                              and picture.count(ORANGE, *rows[1], tolerance=40) > 3, "the rows of two sessions")
        self.leave_notch()
        self.desktop.wait_for_notch(*CLAUDE)

    def test_sessions_are_printed_at_each_change(self):
        self.assertEqual(self.desktop.run("--sessions").stdout, b"[]\n")
        follower, other = [subprocess.Popen([PROGRAM, "--sessions", "--follow"], env=self.desktop.environment,
                                            stdout=subprocess.PIPE) for _ in range(2)]
        self.assertEqual(follower.stdout.readline(), b"[]\n")
        began = int(time.time())
        session = ClaudeCode(self.desktop, "1", "/src/bakery")
        session.fire("Notification", message="May I?")
        told = json.loads(follower.stdout.readline())
        self.assertLessEqual(abs(told[0].pop("since") - began), PATIENCE)
        self.assertEqual(told, [{"phase": "waiting", "project": "bakery", "activity": "May I?"}])
        other.stdout.close()
        self.assertEqual(other.wait(PATIENCE), 0, "its reader has gone")
        # What changes nothing that is told makes no line, and one that does not read holds up nobody.
        other = subprocess.Popen([PROGRAM, "--sessions", "--follow"], env=self.desktop.environment,
                                 stdout=subprocess.PIPE)
        session.fire("Notification", message="May I?")
        for number in range(200):
            session.fire("Notification", message=str(number) * 40)
        session.fire("SessionEnd", reason="exit")
        lines = iter(follower.stdout.readline, b"[]\n")
        self.assertLessEqual(sum(1 for _ in lines), 200)
        self.desktop.overlay.terminate()
        self.assertEqual(follower.wait(PATIENCE), 0, "the overlay has ended")
        other.communicate(timeout=PATIENCE)
        self.assertEqual(other.returncode, 0)
        follower.stdout.close()

    def test_sessions_elsewhere_are_heard_through_a_socket(self):
        socket = Path(self.desktop.environment["XDG_RUNTIME_DIR"], "tarnwick/events")
        wait_until(socket.exists, "the socket")
        # One that is killed leaves it behind.
        self.desktop.kill_overlay()
        self.assertTrue(socket.exists())
        remote = ClaudeCode(self.desktop, "one")
        del remote.environment["DBUS_SESSION_BUS_ADDRESS"]
        remote.environment.update(TARNWICK_SOCKET=str(socket), TARNWICK_MACHINE="devbox")
        remote.fire("SessionStart", source="startup")
        self.desktop.start_overlay()

        def machines():
            remote.fire("Notification", message="May I?")
            return [each.get("machine") for each in json.loads(self.desktop.run("--sessions").stdout)]
        wait_until(lambda: machines() == ["devbox"], "the session on the other machine")
        self.desktop.wait_for_notch(*BANNER)
        self.desktop.overlay.terminate()
        self.desktop.overlay.wait(PATIENCE)
        self.assertFalse(socket.exists())

    def test_the_keyboard_opens_the_list_and_weeds_it(self):
        for name in ("first", "second"):
            ClaudeCode(self.desktop, name, "/src/" + name).fire("Notification", message="May I?")
        ClaudeCode(self.desktop, "rest", "/src/rest").fire("Stop")
        self.desktop.move_pointer(600, 700)
        self.assertEqual(self.desktop.run("--next").returncode, 0)
        self.desktop.wait_for_notch(*EXPANDED)
        self.desktop.key("Down")
        self.desktop.key("Delete")
        wait_until(lambda: len(json.loads(self.desktop.run("--sessions").stdout)) == 2, "the session to be forgotten")
        self.desktop.key("Escape")
        self.desktop.wait_for_notch(*CLAUDE)
        for action in (["--open", "tray"], ["--toggle"]):
            self.desktop.run(*action)
            self.desktop.wait_for_notch(*(EXPANDED if action[0] == "--open" else CLAUDE))

if __name__ == "__main__":
    unittest.main()
