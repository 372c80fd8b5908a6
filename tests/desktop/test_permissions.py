"""A permission that Claude Code asks for is answered in the notch."""

import json
import subprocess
import unittest

from claude_code import ClaudeCode
from desktop import EXPANDED, PATIENCE, wait_until
from desktop_test import CLAUDE, DesktopTest

# Of the button that allows, once it takes clicks.
ALLOW = (22, 70, 34)


class Permissions(DesktopTest):
    def setUp(self):
        super().setUp()
        self.desktop.start_overlay()
        self.assertEqual(self.desktop.run("--install-hooks").returncode, 0)
        self.claude = ClaudeCode(self.desktop, "one")

    def open_list(self):
        self.hover_notch()
        self.desktop.wait_for(lambda picture: picture.notch()[1] == 29, "the hovered notch")
        self.desktop.click()
        self.desktop.wait_for_notch(*EXPANDED)

    def button(self, row):
        """The middle of the button to allow, or to deny, of the first row."""
        return self.middle + 202, 96 + 35 * row

    def buttons_are_ready(self, picture):
        x, y = self.button(0)
        return picture.count(ALLOW, x - 40, y - 10, x - 24, y + 10, tolerance=1) > 200

    def answer(self, row, hook):
        """Presses a button, which takes no click before it has settled."""
        self.desktop.move_pointer(*self.button(row))

        def press():
            self.desktop.click()
            try:
                return hook.wait(1) == 0
            except subprocess.TimeoutExpired:
                return False
        wait_until(press, "the answer")

    def decision(self, hook):
        self.assertEqual(hook.wait(PATIENCE), 0)
        with hook.stdout:
            printed = hook.stdout.read()
        return json.loads(printed)["hookSpecificOutput"]["decision"] if printed else None

    def test_a_press_answers_the_request_on_show(self):
        first = self.claude.ask("Bash", command="make")
        self.desktop.wait_for_notch(*CLAUDE)
        second = self.claude.ask("Edit", file_path="/src/a.c", old_string="a", new_string="b")
        self.open_list()
        self.answer(0, first)
        self.assertEqual(self.decision(first), {"behavior": "allow"})
        self.answer(1, second)
        self.assertEqual(self.decision(second), {"behavior": "deny", "message": "The user has denied this."})
        self.desktop.wait_for(lambda picture: not self.buttons_are_ready(picture), "the buttons to go")
        # One that nobody answers leaves it to the terminal, as soon as that has answered, and takes its buttons along.
        self.desktop.move_pointer(self.middle, 150)
        third = self.claude.ask("Bash", command="make")
        self.desktop.wait_for(self.buttons_are_ready, "the buttons")
        self.claude.fire("PostToolUse", tool_name="Bash", tool_input={"command": "make"})
        self.assertIsNone(self.decision(third))
        self.desktop.wait_for(lambda picture: not self.buttons_are_ready(picture), "the buttons to go")
        fourth = self.claude.ask("Bash", command="make")
        self.desktop.wait_for(self.buttons_are_ready, "the buttons")
        fourth.kill()
        fourth.stdout.close()
        self.desktop.wait_for(lambda picture: not self.buttons_are_ready(picture), "the buttons to go")
        fifth = self.claude.ask("Bash", command="make")
        self.desktop.wait_for(self.buttons_are_ready, "the buttons")
        self.desktop.overlay.kill()
        self.assertIsNone(self.decision(fifth))


if __name__ == "__main__":
    unittest.main()
