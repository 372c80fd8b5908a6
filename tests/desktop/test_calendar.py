"""Events of the user's calendar are announced, whatever becomes of the service that keeps them."""

import os
import signal
import time
import unittest
from pathlib import Path

from desktop_test import BANNER, CLAUDE, HIDDEN, DesktopTest


class Calendar(DesktopTest):
    def setUp(self):
        super().setUp()
        self.file = self.desktop.home / ".local/share/evolution/calendar/system/calendar.ics"
        self.file.parent.mkdir(parents=True)
        self.addCleanup(self.end_services)

    def write_event_of_soon(self, uid):
        """The calendar now holds one event, which begins within five minutes."""
        def utc(seconds):
            return time.strftime("%Y%m%dT%H%M%SZ", time.gmtime(seconds))
        start = time.time() + 280
        lines = ["BEGIN:VCALENDAR", "VERSION:2.0", "PRODID:-//tests//EN", "BEGIN:VEVENT", f"UID:{uid}",
                 f"SUMMARY:{uid}", f"DTSTAMP:{utc(start)}", f"DTSTART:{utc(start)}", f"DTEND:{utc(start + 1800)}",
                 "END:VEVENT", "END:VCALENDAR"]
        self.file.write_text("".join(line + "\r\n" for line in lines))

    def signal_services(self, number):
        """Sends a signal to all of the calendar's services on this desktop."""
        services = 0
        for folder in Path("/proc").glob("[0-9]*"):
            try:
                if (b"evolution-" in (folder / "cmdline").read_bytes()
                        and bytes(self.desktop.home) in (folder / "environ").read_bytes()):
                    os.kill(int(folder.name), number)
                    services += 1
            except (FileNotFoundError, PermissionError, ProcessLookupError):
                pass  # it has ended meanwhile, or is another user's
        self.assertGreater(services, 0)

    def end_services(self):
        """Left to themselves they outlive their bus, and write into a home that has gone."""
        self.desktop.kill_overlay()  # which would have them started again
        self.signal_services(signal.SIGKILL)

    def test_an_event_of_soon_is_announced_also_after_the_service_has_died(self):
        self.write_event_of_soon("first")
        self.desktop.start_overlay()
        self.desktop.wait_for_notch(*BANNER)
        self.desktop.wait_for_notch(*HIDDEN)
        self.signal_services(signal.SIGKILL)
        self.write_event_of_soon("second")
        self.desktop.wait_for_notch(*BANNER)

    def test_a_service_that_hangs_holds_nothing_up(self):
        self.write_event_of_soon("first")
        self.desktop.start_overlay()
        self.desktop.wait_for_notch(*BANNER)
        self.desktop.wait_for_notch(*HIDDEN)
        self.signal_services(signal.SIGSTOP)
        # Not even the start.
        self.desktop.kill_overlay()
        self.desktop.start_overlay()
        self.desktop.hook(session_id="one", cwd="/src/shop", hook_event_name="UserPromptSubmit", prompt="Go on")
        self.desktop.wait_for_notch(*CLAUDE)
        self.signal_services(signal.SIGCONT)
        self.desktop.wait_for_notch(*BANNER)


if __name__ == "__main__":
    unittest.main()
