"""A private desktop: an X server without a screen, a window manager, a compositor and a session bus, in a home of
its own. Tests, measurements and demonstrations run the real overlay on it."""

import json
import os
import shutil
import signal
import subprocess
import tempfile
import time
from pathlib import Path

import dbus.bus
from Xlib import X, XK, Xatom
from Xlib.display import Display
from Xlib.error import BadWindow
from Xlib.ext import shape

from picture import WALLPAPER, Picture

BUILD = Path(os.environ.get("TARNWICK_BUILD", Path(__file__).resolve().parents[2] / "build"))
PROGRAM = BUILD / "bin/Tarnwick"
BUS_NAME = "dev.tarnwick.Tarnwick"

# Sizes of the surface on a screen without a camera notch and without panels, in points.
HOVERED = (220, 29)
EXPANDED = (560, 162)

# Long enough for sanitizers on a busy machine: a bound on failing, not a time that passing takes.
PATIENCE = 30


def wait_until(condition, what, patience=PATIENCE):
    """Returns the first true answer of `condition`; fails when there is none in time."""
    end = time.monotonic() + patience
    while True:
        answer = condition()
        if answer:
            return answer
        if time.monotonic() > end:
            raise AssertionError(f"waited {patience} s in vain for {what}")
        time.sleep(0.01)


class PrivateDesktop:
    """What all of them have: a home, a bus and the overlay. Each kind starts its display in `start_display`, takes a
    `picture` of it, and has a hand: `move_pointer`, `press`, `release` and `key`."""

    def __init__(self, size=(1280, 800), language="en"):
        self.size = size
        self.processes = []
        self.overlay = None
        self.root_folder = Path(tempfile.mkdtemp(prefix="tarnwick-desktop-"))
        self.home = self.root_folder / "home"
        folders = {"HOME": self.home, "XDG_CONFIG_HOME": self.home / ".config",
                   "XDG_DATA_HOME": self.home / ".local/share", "XDG_CACHE_HOME": self.home / ".cache",
                   "XDG_RUNTIME_DIR": self.root_folder / "run"}
        for folder in folders.values():
            folder.mkdir(parents=True, mode=0o700)
        self.defaults_file = folders["XDG_CONFIG_HOME"] / "Tarnwick/defaults.json"
        self.environment = {name: value for name, value in os.environ.items()
                            if name not in ("DISPLAY", "WAYLAND_DISPLAY", "DBUS_SESSION_BUS_ADDRESS",
                                            "QT_QPA_PLATFORM", "LC_ALL", "LC_MESSAGES")}
        self.environment.update({name: str(folder) for name, folder in folders.items()})
        # The C locale would make nothing of LANGUAGE. The other one need not be installed: its name is enough.
        locale = {"en": "C.UTF-8", "fr": "fr_FR.UTF-8"}[language]
        self.environment.update(LANG=locale, LANGUAGE=language, QT_ACCESSIBILITY="0")
        try:
            self.start_display()
        except BaseException:
            self.close()
            raise

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.close()

    def start_bus(self):
        self.bus_address = self._start_telling("--print-address", ["dbus-daemon", "--session", "--nofork"])
        self.bus_daemon = self.processes[-1]
        self.environment["DBUS_SESSION_BUS_ADDRESS"] = self.bus_address
        self.bus = dbus.bus.BusConnection(self.bus_address)

    def _start_telling(self, option, command):
        """Starts a server that writes where it is to be found into a descriptor, and returns that."""
        read_end, write_end = os.pipe()
        argument = [f"{option}={write_end}"] if option.startswith("--") else [option, str(write_end)]
        self.start(command + argument, pass_fds=[write_end])
        os.close(write_end)
        with os.fdopen(read_end) as answer:
            line = answer.readline().strip()
        if not line:
            raise AssertionError(f"{command[0]} did not start")
        return line

    def start(self, command, environment=None, output=None, **options):
        """Starts a program on this desktop; it ends with the desktop. `environment` adds to the desktop's; what it
        prints goes to its log, but for what goes to `output`."""
        log = open(self.root_folder / f"{len(self.processes)}-{Path(command[0]).name}.log", "wb")
        process = subprocess.Popen([str(part) for part in command], env=self.environment | (environment or {}),
                                   cwd=self.home, stdin=options.pop("stdin", subprocess.DEVNULL),
                                   stdout=output or log, stderr=log,
                                   start_new_session=True, **options)
        process.log = Path(log.name)
        log.close()
        self.processes.append(process)
        return process

    def start_audio_daemon(self):
        """With one output, "speakers"."""
        daemon = self.start(["pulseaudio", "-n", "--daemonize=no", "--exit-idle-time=-1", "--use-pid-file=no", "-L",
                             "module-null-sink sink_name=speakers", "-L",
                             "module-native-protocol-unix auth-anonymous=1"])
        wait_until(lambda: "speakers" in self.control_audio("get-default-sink"), "the audio daemon")
        return daemon

    def control_audio(self, *arguments):
        return subprocess.run(["pactl", *arguments], env=self.environment, capture_output=True, text=True,
                              timeout=PATIENCE).stdout

    def start_system_bus(self):
        """Without any service. Programs that are started from now on see it."""
        self.environment["DBUS_SYSTEM_BUS_ADDRESS"] = self._start_telling(
            "--print-address", ["dbus-daemon", "--session", "--nofork"])

    def close(self):
        for process in reversed(self.processes):
            if process.poll() is None:
                process.terminate()
                try:
                    process.wait(5)
                except subprocess.TimeoutExpired:
                    process.kill()
                    process.wait()
        shutil.rmtree(self.root_folder, ignore_errors=True)

    # The overlay

    def start_overlay(self, defaults=None, arguments=()):
        """Starts the overlay and returns when it hears notifications and follows the pointer."""
        if defaults is not None:
            self.defaults_file.parent.mkdir(parents=True, exist_ok=True)
            self.defaults_file.write_text(json.dumps(defaults))
        self.overlay = self.start([PROGRAM, *arguments])
        wait_until(lambda: self.overlay_runs() and self.bus.name_has_owner(BUS_NAME), "the overlay's bus name")
        return self.overlay

    def overlay_runs(self):
        """Fails with what it said when the overlay has ended by itself."""
        if self.overlay.poll() is not None:
            raise AssertionError(f"the overlay ended with {self.overlay.returncode}: "
                                 + self.overlay.log.read_text(errors="replace")[-4000:])
        return True

    def kill_overlay(self):
        self.overlay.send_signal(signal.SIGKILL)
        self.overlay.wait()
        wait_until(lambda: not self.bus.name_has_owner(BUS_NAME), "the bus to miss the overlay")

    def run(self, *arguments, stdin=b"", timeout=PATIENCE):
        """Runs the program in a command-line role."""
        return subprocess.run([str(PROGRAM), *arguments], input=stdin, env=self.environment, cwd=self.home,
                              capture_output=True, timeout=timeout)

    def hook(self, **event):
        """Relays one event; a hook succeeds silently, whatever happens."""
        result = self.run("--hook", stdin=json.dumps(event).encode())
        assert (result.returncode, result.stdout, result.stderr) == (0, b"", b""), result

    def defaults(self):
        return json.loads(self.defaults_file.read_text()) if self.defaults_file.exists() else {}

    # The screen

    def top(self):
        """The part of the screen that the overlay may draw on."""
        return self.picture((self.size[0] - 940) // 2, 0, 940, 380)

    def wait_for(self, condition, what, patience=PATIENCE):
        """Waits for a picture of the overlay's part that satisfies the condition, and returns it."""
        def look():
            if self.overlay is not None:
                self.overlay_runs()
            picture = self.top()
            return picture if condition(picture) else None
        return wait_until(look, what, patience)

    def wait_for_notch(self, width, height):
        """Waits until the surface has come to rest at that size (0 × 0: is not to be seen). Its body is twelve
        points narrower than the surface: the ears."""
        body = max(width - 12, 0)
        seen = []

        def resting(picture):
            seen.append(picture.notch()[:2])
            return len(seen) >= 12 and all(size == (body, height) for size in seen[-12:])
        try:
            return self.wait_for(resting, f"a surface of {width} × {height}")
        except AssertionError as error:
            raise AssertionError(f"{error}; its body was last {seen[-1]}") from None

    # The pointer

    def click(self, button=1):
        self.press(button)
        self.release(button)

    def open_page(self, tab):
        """Opens the notch by a tap and selects a tab: home, audio, claude, tray or notes."""
        middle = self.size[0] // 2
        self.move_pointer(middle, 0)
        # As wide as what it shows needs.
        self.wait_for(lambda picture: picture.notch()[1] == HOVERED[1], "the hovered notch")
        self.click()
        self.wait_for_notch(*EXPANDED)
        number = ("home", "audio", "claude", "tray", "notes").index(tab)
        # The bar begins 20 points within the surface's left edge; its buttons are 31 wide, one apart.
        self.move_pointer(middle - EXPANDED[0] // 2 + 20 + 32 * number + 15, 12)
        self.click()


class Desktop(PrivateDesktop):
    """An X server, with a window manager and, on request, a compositor."""

    def __init__(self, compositor=True, size=(1280, 800), scale=1, language="en"):
        self.compositor, self.scale = compositor, scale
        super().__init__(size, language)

    def start_display(self):
        width, height = self.size
        if self.scale != 1:
            self.environment["QT_SCALE_FACTOR"] = str(self.scale)
        number = self._start_telling("-displayfd", ["Xvfb", "-screen", "0", f"{width}x{height}x24", "-nolisten",
                                                    "tcp", "-noreset", "+extension", "Composite"])
        self.display_server = self.processes[-1]
        self.environment["DISPLAY"] = f":{number}"
        self.x = Display(f":{number}")
        self.root = self.x.screen().root
        self.start_bus()
        self.paint_wallpaper(lambda _: WALLPAPER)
        self.start(["openbox"])
        wait_until(lambda: self._property(self.root, "_NET_SUPPORTING_WM_CHECK"), "the window manager")
        if self.compositor:
            self.start(["picom", "--backend", "xrender", "--config", "/dev/null"])
            wait_until(lambda: self.selection_is_owned("_NET_WM_CM_S0"), "the compositor")

    def close(self):
        if hasattr(self, "x"):
            self.x.close()
        super().close()

    def kill_display(self):
        del self.x
        self.display_server.kill()

    def start_overlay(self, defaults=None, arguments=()):
        super().start_overlay(defaults, arguments)
        # It hears and follows before its window shows, which is open to the pointer at the top at most.
        wait_until(lambda: self.overlay_runs() and self.height_open_to_pointer() < 100, "the overlay's window")
        return self.overlay

    def height_open_to_pointer(self):
        for window in self.root.query_tree().children:
            try:
                process = self._property(window, "_NET_WM_PID")
                if (process and process.value[0] == self.overlay.pid
                        and window.get_attributes().map_state == X.IsViewable):
                    areas = window.shape_get_rectangles(shape.SK.Input).rectangles
                    return max((area.y + area.height for area in areas), default=0)
            except BadWindow:
                pass  # it has gone meanwhile
        return self.size[1]

    def paint_wallpaper(self, colour_of_row):
        """Fills the root window, for the server and for the compositor alike."""
        width, height = self.size
        self.wallpaper = self.root.create_pixmap(width, height, 24)
        brush = self.wallpaper.create_gc()
        for y in range(height):
            red, green, blue = colour_of_row(y)
            brush.change(foreground=red << 16 | green << 8 | blue)
            self.wallpaper.fill_rectangle(brush, 0, y, width, 1)
        self.root.change_property(self.x.intern_atom("_XROOTPMAP_ID"), Xatom.PIXMAP, 32, [self.wallpaper.id])
        self.root.change_attributes(background_pixmap=self.wallpaper)
        self.root.clear_area(0, 0, width, height)
        self.x.sync()

    def picture(self, x=0, y=0, width=None, height=None):
        width, height = width or self.size[0] - x, height or self.size[1] - y
        image = self.root.get_image(x, y, width, height, X.ZPixmap, 0xFFFFFFFF)
        return Picture(x, y, width, height, bytes(image.data))

    def move_pointer(self, x, y):
        self.x.xtest_fake_input(X.MotionNotify, x=x, y=y)
        self.x.sync()

    def press(self, button=1):
        self.x.xtest_fake_input(X.ButtonPress, button)
        self.x.sync()

    def release(self, button=1):
        self.x.xtest_fake_input(X.ButtonRelease, button)
        self.x.sync()

    def key(self, name):
        code = self.x.keysym_to_keycode(XK.string_to_keysym(name))
        for event in (X.KeyPress, X.KeyRelease):
            self.x.xtest_fake_input(event, code)
        self.x.sync()

    def selection_is_owned(self, name):
        return self.x.get_selection_owner(self.x.intern_atom(name)) != X.NONE

    def _property(self, window, name):
        return window.get_full_property(self.x.intern_atom(name), X.AnyPropertyType)
