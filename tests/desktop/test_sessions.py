"""Claude Code runs the installed hooks, and the notch shows what its sessions do."""

import unittest

from claude_code import ClaudeCode
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

if __name__ == "__main__":
    unittest.main()
