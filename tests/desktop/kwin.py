"""A private desktop of KDE: KWin without a screen, which allows everything to every program."""

import os
import shutil
import subprocess
import threading

import dbus

from desktop import BUILD, PrivateDesktop, wait_until
from picture import Picture
from sway import BUTTONS, KEYS


class KWin(PrivateDesktop):
    """Its pictures are in pixels, everything else in points."""

    def __init__(self, size=(1280, 800), scale=1, language="en", outputs=1, permission_checks=False):
        self.scale, self.outputs, self.permission_checks = scale, outputs, permission_checks
        super().__init__(size, language)

    def start_display(self):
        self.start_bus()
        # The installed program has a capability that a container may refuse to give; a copy has none.
        program = self.root_folder / "kwin_wayland"
        shutil.copy(shutil.which("kwin_wayland"), program)
        told = self.root_folder / "environment"
        teller = self.root_folder / "tell"
        teller.write_text(f"#!/bin/sh\nenv > {told}.part && mv {told}.part {told}\n")
        teller.chmod(0o755)
        (self.home / ".config/kwinrc").write_text("[Windows]\nBorderlessMaximizedWindows=true\n")
        self.environment.update(XDG_CURRENT_DESKTOP="KDE", XDG_SESSION_TYPE="wayland", LIBGL_ALWAYS_SOFTWARE="1",
                                KWIN_SCREENSHOT_NO_PERMISSION_CHECKS="1")
        if not self.permission_checks:
            self.environment["KWIN_WAYLAND_NO_PERMISSION_CHECKS"] = "1"
        self.compositor = self.start([program, "--virtual", "--width", self.size[0], "--height", self.size[1],
                                      "--scale", self.scale, "--output-count",
                                      self.outputs, "--xwayland", "--no-lockscreen", teller])
        wait_until(told.exists, "the compositor")
        for line in told.read_text().splitlines():
            name, _, value = line.partition("=")
            if name in ("WAYLAND_DISPLAY", "DISPLAY", "XAUTHORITY"):
                self.environment[name] = value
        if not self.permission_checks:
            self.start_hand()

    def start_hand(self):
        self.hand = self.start([BUILD / "tests/desktop/hand"], stdin=subprocess.PIPE, output=subprocess.PIPE)

    def close(self):
        super().close()
        if hasattr(self, "hand"):
            self.hand.stdin.close()
            self.hand.stdout.close()

    def picture(self, x=0, y=0, width=None, height=None):
        width, height = width or self.size[0] - x, height or self.size[1] - y
        service = self.bus.get_object("org.kde.KWin", "/org/kde/KWin/ScreenShot2")
        read_end, write_end = os.pipe()
        data = []
        with os.fdopen(read_end, "rb") as pipe:
            reader = threading.Thread(target=lambda: data.append(pipe.read()))
            reader.start()
            told = service.CaptureArea(x, y, dbus.UInt32(width), dbus.UInt32(height),
                                       {"native-resolution": dbus.Boolean(True, variant_level=1)},
                                       dbus.types.UnixFd(write_end),
                                       dbus_interface="org.kde.KWin.ScreenShot2")
            os.close(write_end)
            reader.join()
        return Picture(x, y, int(told["width"]), int(told["height"]), data[0])

    def play(self, *words):
        self.hand.stdin.write(" ".join(map(str, words)).encode() + b"\n")
        self.hand.stdin.flush()
        assert self.hand.stdout.readline() == b"done\n", "the hand has gone"

    def move_pointer(self, x, y):
        self.play("move", x, y, *self.size)

    def press(self, button=1):
        self.play("down", BUTTONS[button])

    def release(self, button=1):
        self.play("up", BUTTONS[button])

    def key(self, name):
        self.play("key", KEYS[name])
