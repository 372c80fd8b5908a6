"""What must hurt neither hooks nor overlay: its sudden end, its silence, and foreign bytes of every kind."""

import json
import signal
import threading
import unittest

from claude_code import ClaudeCode
from desktop import wait_until
from desktop_test import BANNER, CLAUDE, HIDDEN, DesktopTest


class Endurance(DesktopTest):
    def test_hooks_outlive_the_overlay(self):
        self.desktop.start_overlay()
        self.desktop.run("--install-hooks")
        stop, failures, fired = threading.Event(), [], []

        def keep_firing(session):
            claude = ClaudeCode(self.desktop, session)
            try:
                while not stop.is_set():
                    claude.fire("PreToolUse", tool_name="Read", tool_input={"file_path": "/a/b"})
                    fired.append(session)
            except Exception as error:
                failures.append(error)

        sessions = [threading.Thread(target=keep_firing, args=(name,)) for name in ("a", "b")]
        for session in sessions:
            session.start()
        try:
            for _ in range(3):
                self.desktop.wait_for_notch(*CLAUDE)
                self.desktop.kill_overlay()
                before = len(fired)
                wait_until(lambda: len(fired) > before + 5 or failures, "hooks without an overlay")
                self.desktop.start_overlay()
            self.desktop.wait_for_notch(*CLAUDE)
        finally:
            stop.set()
            for session in sessions:
                session.join()
        self.assertEqual(failures, [])

    def test_an_overlay_that_stands_still_holds_up_no_hook(self):
        overlay = self.desktop.start_overlay()
        overlay.send_signal(signal.SIGSTOP)
        try:
            for number in range(50):
                result = self.desktop.run("--hook", timeout=5, stdin=json.dumps(
                    {"hook_event_name": "UserPromptSubmit", "session_id": str(number)}).encode())
                self.assertEqual((result.returncode, result.stdout, result.stderr), (0, b"", b""))
            self.desktop.hook(hook_event_name="Notification", session_id="7", message="May I?")
        finally:
            overlay.send_signal(signal.SIGCONT)
        self.desktop.wait_for_notch(*BANNER)

    def test_foreign_bytes_are_silent_and_leave_nothing_behind(self):
        self.desktop.start_overlay()
        self.desktop.hook(hook_event_name="SessionEnd")
        inputs = [
            b"", b"{", b'{"hook_event_name":"Stop","session_id":"a"} x', b"{}\0{}", b'{"a":' * 1_000_000,
            b'{"hook_event_name":7}', b'{"hook_event_name":"Nonsense","session_id":"\xff\xfe\xc0\x80"}',
            b'{"session_id":"\\ud800","cwd":"\\u0000","hook_event_name":"SessionEnd"}', b'{"a":1e999999}',
            b'{"hook_event_name":"UserPromptSubmit","session_id":"large","prompt":"'
            + b"a\\u0301" * (64 * 1024 * 1024 // 7) + b'"}',
        ]
        resident = []
        for _ in range(4):
            for text in inputs:
                result = self.desktop.run("--hook", stdin=text)
                self.assertEqual((result.returncode, result.stdout, result.stderr), (0, b"", b""), text[:100])
            self.desktop.wait_for_notch(*CLAUDE)
            self.desktop.hook(hook_event_name="SessionEnd", session_id="large")
            self.desktop.wait_for_notch(*HIDDEN)
            resident.append(self.resident_kilobytes())
        if not self.sanitized:  # their allocator keeps what was freed
            self.assertLess(resident[-1] - resident[0], 4096, "the first round sets up what stays")
        self.desktop.hook(hook_event_name="UserPromptSubmit", session_id="a")
        self.desktop.wait_for_notch(*CLAUDE)
        self.assertEqual(self.desktop.overlay.log.read_bytes(), b"")


if __name__ == "__main__":
    unittest.main()
