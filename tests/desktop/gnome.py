"""A private desktop of GNOME: its shell without a screen, with XWayland, which allows everything to every program."""

import re
import subprocess

import dbus
import gi

gi.require_version("GdkPixbuf", "2.0")
from gi.repository import GdkPixbuf  # noqa: E402

from desktop import PrivateDesktop, wait_until  # noqa: E402
from picture import Picture  # noqa: E402


class Gnome(PrivateDesktop):
    def start_display(self):
        self.start_bus()
        self.start_system_bus()
        # The shell wants a login manager.
        self.start(["/usr/bin/python3", "-m", "dbusmock", "--system", "--template", "logind"])
        system = dbus.bus.BusConnection(self.environment["DBUS_SYSTEM_BUS_ADDRESS"])
        wait_until(lambda: system.name_has_owner("org.freedesktop.login1"), "the login manager")
        self.environment.update(XDG_CURRENT_DESKTOP="GNOME", XDG_SESSION_TYPE="wayland", LIBGL_ALWAYS_SOFTWARE="1")
        shell = self.start(["gnome-shell", "--headless", "--virtual-monitor", "%dx%d" % self.size, "--wayland",
                            "--unsafe-mode"])
        wait_until(lambda: self.bus.name_has_owner("org.gnome.Shell"), "the shell")
        wait_until(lambda: self.evaluate("Main.layoutManager._startingUp") == "false", "the shell to be ready")
        self.environment["DISPLAY"] = re.search(r"public X11 display (:\d+)", shell.log.read_text())[1]
        run = self.root_folder / "run"
        self.environment["XAUTHORITY"] = str(next(run.glob(".mutter-Xwaylandauth.*")))
        self.environment["WAYLAND_DISPLAY"] = "wayland-0"
        self.evaluate("global.hand = imports.gi.Clutter.get_default_backend().get_default_seat()"
                      ".create_virtual_device(imports.gi.Clutter.InputDeviceType.POINTER_DEVICE);"
                      "Main.overview.hide()")
        wait_until(lambda: self.evaluate("Main.overview.visible") == "false", "the overview to close")

    def evaluate(self, script):
        """The answer of the shell to a piece of its own language, as JSON; none while it cannot answer."""
        shell = self.bus.get_object("org.gnome.Shell", "/org/gnome/Shell")
        try:
            good, answer = shell.Eval(script, dbus_interface="org.gnome.Shell")
        except dbus.exceptions.DBusException:
            return None
        return answer if good else None

    def start_overlay(self, defaults=None, arguments=()):
        super().start_overlay(defaults, arguments)

        def is_shown():
            windows = subprocess.run(["xwininfo", "-root", "-tree"], env=self.environment, capture_output=True, text=True)
            return '("Tarnwick" ' in windows.stdout or '("overlay" ' in windows.stdout
        wait_until(lambda: self.overlay_runs() and is_shown(), "the overlay's window")
        return self.overlay

    def picture(self, x=0, y=0, width=None, height=None):
        width, height = width or self.size[0] - x, height or self.size[1] - y
        file = str(self.root_folder / "shot.png")
        shot = self.bus.get_object("org.gnome.Shell.Screenshot", "/org/gnome/Shell/Screenshot")
        shot.ScreenshotArea(x, y, width, height, False, file, dbus_interface="org.gnome.Shell.Screenshot")
        pixels = GdkPixbuf.Pixbuf.new_from_file(file).add_alpha(False, 0, 0, 0)
        data = bytearray(pixels.get_pixels())
        data[0::4], data[2::4] = data[2::4], data[0::4]
        return Picture(x, y, pixels.get_width(), pixels.get_height(), bytes(data))

    def move_pointer(self, x, y):
        self.evaluate(f"global.hand.notify_absolute_motion(global.get_current_time() * 1000, {x}, {y})")

    def turn_button(self, button, state):
        self.evaluate(f"global.hand.notify_button(global.get_current_time() * 1000, {button},"
                      f"imports.gi.Clutter.ButtonState.{state})")

    def press(self, button=1):
        self.turn_button(button, "PRESSED")

    def release(self, button=1):
        self.turn_button(button, "RELEASED")
