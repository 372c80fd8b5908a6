"""What the tests of the real overlay share."""

import os
import unittest
from pathlib import Path

from desktop import BUILD, EXPANDED, HOVERED, Desktop

__all__ = ["BUILD", "EXPANDED", "HOVERED", "Desktop"]

# More sizes of the surface.
CLAUDE = (290, 24)
BANNER = (400, 84)
HIDDEN = (0, 0)


class DesktopTest(unittest.TestCase):
    """A test with a desktop of its own. When it fails, what was to be seen lies in the build folder."""

    compositor = True

    def make_desktop(self):
        return Desktop(compositor=self.compositor)

    def setUp(self):
        self.desktop = self.make_desktop()
        self.addCleanup(self.desktop.close)
        self.addCleanup(self.keep_picture_of_failure)
        self.middle = self.desktop.size[0] // 2

    def keep_picture_of_failure(self):
        outcome = self._outcome.result
        if any(test is self for test, _ in outcome.failures + outcome.errors):
            folder = BUILD / "desktop-failures"
            folder.mkdir(exist_ok=True)
            path = folder / f"{self.id()}.png"
            self.desktop.picture().save(path)
            print(f"picture: {path}")

    def hover_notch(self):
        self.desktop.move_pointer(self.middle, 0)

    def leave_notch(self):
        self.desktop.move_pointer(self.middle, self.desktop.size[1] - 50)

    def resident_kilobytes(self):
        status = Path(f"/proc/{self.desktop.overlay.pid}/status").read_text()
        return int(status.split("VmRSS:")[1].split()[0])

    @property
    def sanitized(self):
        return b"__asan_init" in (BUILD / "libexec/Tarnwick/overlay").read_bytes()
