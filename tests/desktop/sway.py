"""A private Wayland desktop: sway without a screen, with a mouse and a keyboard that a program plays."""

import json
import os
import shutil
import subprocess
from pathlib import Path

from desktop import BUILD, PATIENCE, PrivateDesktop, wait_until
from picture import WALLPAPER, Picture

# As the kernel numbers them.
BUTTONS = {1: 0x110, 3: 0x111, 2: 0x112}
KEYS = {name: code for row, first in (("qwertyuiop", 16), ("asdfghjkl", 30), ("zxcvbnm", 44))
        for code, name in enumerate(row, first)} | {"Return": 28, "Escape": 1, "Tab": 15}

CONFIGURATION = """
output HEADLESS-1 resolution {0}x{1} scale {2}
output * bg #{3:02x}{4:02x}{5:02x} solid_color
xwayland {6}
default_border none
focus_follows_mouse no
exec env > {7}.part && mv {7}.part {7}
"""


class Sway(PrivateDesktop):
    """Its pictures are in pixels, everything else in points."""

    def __init__(self, size=(1280, 800), scale=1, language="en", xwayland=False):
        self.scale, self.xwayland = scale, xwayland
        super().__init__(size, language)

    def start_display(self):
        # A folder of its own, as another user may run it.
        folder = self.root_folder / "compositor"
        folder.mkdir(mode=0o700)
        told = folder / "environment"
        configuration = self.root_folder / "sway.conf"
        pixels = [round(length * self.scale) for length in self.size]
        configuration.write_text(CONFIGURATION.format(*pixels, self.scale, *WALLPAPER,
                                                      "enable" if self.xwayland else "disable", told))
        self.start_bus()
        command = ["sway", "-c", str(configuration)]
        if os.geteuid() == 0:
            # It refuses to run as root.
            command = ["setpriv", "--reuid", "nobody", "--regid", "nogroup", "--clear-groups"] + command
            self.root_folder.chmod(0o755)
            shutil.chown(folder, "nobody", "nogroup")
        self.compositor = self.start(command, environment={
            "XDG_RUNTIME_DIR": folder, "WLR_BACKENDS": "headless", "WLR_RENDERER": "pixman",
            "WLR_LIBINPUT_NO_DEVICES": "1"})
        wait_until(told.exists, "the compositor")
        for line in told.read_text().splitlines():
            name, _, value = line.partition("=")
            if name in ("WAYLAND_DISPLAY", "SWAYSOCK") or (name == "DISPLAY" and self.xwayland):
                self.environment[name] = value
        self.environment["WAYLAND_DISPLAY"] = str(folder / self.environment["WAYLAND_DISPLAY"])
        self.environment["XDG_SESSION_TYPE"] = "wayland"
        self.hand = self.start([BUILD / "tests/desktop/hand"], stdin=subprocess.PIPE, output=subprocess.PIPE)

    def close(self):
        super().close()
        if hasattr(self, "hand"):
            self.hand.stdin.close()
            self.hand.stdout.close()

    def start_overlay(self, defaults=None, arguments=()):
        super().start_overlay(defaults, arguments)
        # It hears and follows before its window shows.
        maps = Path(f"/proc/{self.overlay.pid}/maps")
        wait_until(lambda: self.overlay_runs() and "wayland-shm" in maps.read_text(), "the overlay's window")
        return self.overlay

    def message(self, *words):
        """What sway answers to a message."""
        return subprocess.run(["swaymsg", *words], env=self.environment, capture_output=True, text=True,
                              timeout=PATIENCE, check=True).stdout

    def command(self, *words):
        answers = json.loads(self.message("--raw", *words))
        assert all(answer["success"] for answer in answers), answers

    def windows(self):
        """What sway tells of all windows, by their application's name."""
        found = {}

        def collect(node):
            if node.get("app_id") or node.get("window_properties"):
                found[node.get("app_id") or node["window_properties"].get("class")] = node
            for child in node["nodes"] + node["floating_nodes"]:
                collect(child)
        collect(json.loads(self.message("--raw", "-t", "get_tree")))
        return found

    def wait_for_window(self, application):
        return wait_until(lambda: self.windows().get(application), f"a window of {application}")

    def picture(self, x=0, y=0, width=None, height=None):
        width, height = width or self.size[0] - x, height or self.size[1] - y
        shot = subprocess.run(["grim", "-t", "ppm", "-g", f"{x},{y} {width}x{height}", "-"], env=self.environment,
                              capture_output=True, timeout=PATIENCE, check=True).stdout
        _, size, _, data = shot.split(b"\n", 3)
        pixel_width, pixel_height = map(int, size.split())
        pixels = bytearray(4 * pixel_width * pixel_height)
        pixels[0::4], pixels[1::4], pixels[2::4] = data[2::3], data[1::3], data[0::3]
        return Picture(x, y, pixel_width, pixel_height, bytes(pixels))

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
