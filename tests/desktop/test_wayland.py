"""The overlay on a Wayland compositor that gives its window a layer."""

from desktop import wait_until
from desktop_test import CLAUDE, EXPANDED, HIDDEN, HOVERED, DesktopTest
from sway import Sway


class Wayland(DesktopTest):
    def make_desktop(self):
        return Sway()

    def start_terminal(self):
        """It fills the screen and writes down what reaches it: clicks and keys."""
        self.desktop.start(["foot", "-o", "colors.background=00d0d0", "sh", "-c",
                            r"stty raw -echo; printf '\033[?1000h'; cat > heard"])
        self.desktop.wait_for_window("foot")
        return self.desktop.home / "heard"

    def heard(self, what):
        wait_until(lambda: what in (self.desktop.home / "heard").read_bytes(), f"the terminal to hear {what}")

    def terminal_has_keyboard(self):
        return self.desktop.windows()["foot"]["focused"]

    def click_at(self, x, y):
        self.desktop.move_pointer(x, y)
        self.desktop.click()

    def test_it_takes_the_pointer_on_its_surface_only(self):
        self.start_terminal()
        self.desktop.start_overlay()
        self.hover_notch()
        self.desktop.wait_for_notch(*HOVERED)
        self.desktop.click()
        self.desktop.wait_for_notch(*EXPANDED)
        self.click_at(self.middle, 400)
        self.desktop.wait_for_notch(*HIDDEN)
        self.heard(b"\x1b[M")
        heard = (self.desktop.home / "heard").read_bytes()
        for place in ((self.middle, 120), (self.middle - 240, 10)):
            self.click_at(*place)
            self.heard(heard + b"\x1b[M")
            heard = (self.desktop.home / "heard").read_bytes()

    def test_it_has_the_keyboard_while_a_note_is_written(self):
        self.start_terminal()
        self.desktop.start_overlay()
        self.desktop.open_page("notes")
        self.desktop.wait_for_notch(*EXPANDED)
        self.click_at(self.middle, 100)
        notes = self.desktop.home / ".local/share/Tarnwick/notes.txt"
        wait_until(lambda: not self.terminal_has_keyboard(), "the keyboard")
        self.desktop.key("a")
        wait_until(lambda: notes.exists() and notes.read_text() == "a", "the note to be saved")
        self.leave_notch()
        self.desktop.wait_for_notch(*HIDDEN)
        wait_until(self.terminal_has_keyboard, "the keyboard to be given back")
        self.desktop.key("b")
        self.heard(b"b")

    def test_who_opened_it_by_keyboard_leaves_it_by_a_click_elsewhere(self):
        self.start_terminal()
        self.desktop.start_overlay()
        self.desktop.run("--open", "notes")
        wait_until(lambda: not self.terminal_has_keyboard(), "the keyboard")
        self.desktop.wait_for_notch(*EXPANDED)
        self.click_at(self.middle, 400)
        self.desktop.wait_for_notch(*HIDDEN)
        wait_until(self.terminal_has_keyboard, "the keyboard to be given back")

    def test_it_hides_from_what_fills_the_screen(self):
        self.start_terminal()
        self.desktop.start_overlay()
        self.desktop.hook(hook_event_name="UserPromptSubmit", session_id="a", cwd="/src/shop", prompt="go")
        self.desktop.wait_for_notch(*CLAUDE)
        for command, size in (("fullscreen enable", HIDDEN), ("workspace empty", CLAUDE), ("workspace 1", HIDDEN),
                              ("fullscreen disable", CLAUDE)):
            with self.subTest(command):
                self.desktop.command(command)
                self.desktop.wait_for_notch(*size)
