"""The overlay on a Wayland compositor that gives its window a layer."""

import itertools
import json
import subprocess
import sys
import time
from pathlib import Path

from desktop import PROGRAM, wait_until
from desktop_test import BANNER, CLAUDE, EXPANDED, HIDDEN, HOVERED, DesktopTest
from sway import Sway
from test_terminals import PROGRAM_IN_TERMINAL


def start_neighbour(desktop, *arguments):
    return desktop.start(["/usr/bin/python3", Path(__file__).with_name("neighbour.py"), *arguments],
                         environment={"GDK_BACKEND": "wayland"})


class Wayland(DesktopTest):
    def make_desktop(self):
        return Sway()

    def start_neighbour(self, *arguments):
        self.neighbour = start_neighbour(self.desktop, *arguments)
        wait_until(self.neighbour_has_keyboard, "the other window to have the keyboard")

    def heard(self):
        return self.neighbour.log.read_text().splitlines()

    def hears(self, line):
        wait_until(lambda: line in self.heard(), f"the other window to hear of {line}")

    def neighbour_has_keyboard(self):
        return [line for line in self.heard() if line.startswith("focus")][-1:] == ["focus in"]

    def click_at(self, x, y):
        self.desktop.move_pointer(x, y)
        self.desktop.click()

    def start_working_session(self):
        self.desktop.hook(hook_event_name="UserPromptSubmit", session_id="a", cwd="/src/shop", prompt="go")
        self.desktop.wait_for_notch(*CLAUDE)

    def test_it_takes_the_pointer_on_its_surface_only(self):
        self.start_neighbour()
        self.desktop.start_overlay()
        self.hover_notch()
        self.desktop.wait_for_notch(*HOVERED)
        self.desktop.click()
        self.desktop.wait_for_notch(*EXPANDED)
        beside = ((self.middle, 400), (self.middle, 120), (self.middle - 240, 10))
        for place in beside:
            self.click_at(*place)
            self.hears("click %d %d" % place)
            self.desktop.wait_for_notch(*HIDDEN)
        heard = {line for line in self.heard() if line.startswith("click")}
        self.assertEqual(heard, {"click %d %d" % place for place in beside})

    def test_it_has_the_keyboard_while_a_note_is_written(self):
        self.start_neighbour()
        self.desktop.start_overlay()
        self.desktop.open_page("notes")
        self.desktop.wait_for_notch(*EXPANDED)
        wait_until(self.neighbour_has_keyboard, "the other window to have the keyboard after a click on a tab")
        self.click_at(self.middle, 100)
        notes = self.desktop.home / ".local/share/Tarnwick/notes.txt"
        wait_until(lambda: not self.neighbour_has_keyboard(), "the keyboard")
        self.desktop.key("a")
        wait_until(lambda: notes.exists() and notes.read_text() == "a", "the note to be saved")
        self.leave_notch()
        self.desktop.wait_for_notch(*HIDDEN)
        wait_until(self.neighbour_has_keyboard, "the keyboard to be given back")
        self.desktop.key("b")
        self.hears("key b")

    def test_who_opened_it_by_keyboard_leaves_it_by_a_click_elsewhere(self):
        self.start_neighbour()
        self.desktop.start_overlay()
        self.desktop.run("--open", "notes")
        wait_until(lambda: not self.neighbour_has_keyboard(), "the keyboard")
        self.desktop.wait_for_notch(*EXPANDED)
        self.click_at(self.middle, 400)
        self.desktop.wait_for_notch(*HIDDEN)
        wait_until(self.neighbour_has_keyboard, "the keyboard to be given back")

    def test_it_hides_from_what_fills_the_screen(self):
        self.start_neighbour()
        self.desktop.start_overlay()
        self.start_working_session()
        self.desktop.key("f")
        self.desktop.wait_for_notch(*HIDDEN)
        self.desktop.hook(hook_event_name="Notification", session_id="a", cwd="/src/shop", message="May I?")
        self.desktop.wait_for_notch(*BANNER)
        self.desktop.key("f")
        self.desktop.wait_for_notch(*CLAUDE)

    def swaymsg(self, *arguments):
        return subprocess.run(["swaymsg", *arguments], env=self.desktop.environment, capture_output=True,
                              check=True).stdout

    def active(self):
        def windows(node):
            yield node
            for each in node["nodes"] + node["floating_nodes"]:
                yield from windows(each)
        tree = json.loads(self.swaymsg("-rt", "get_tree"))
        return [each["name"] for each in windows(tree) if each["focused"]]

    def test_a_click_on_a_session_leads_to_its_terminal(self):
        # Below the notch.
        for rule in ("floating enable", "resize set 400 200", "move position 40 500"):
            self.swaymsg(f'for_window [app_id="foot"] {rule}')
        self.desktop.start_overlay()
        for name in ("shop", "bakery"):
            said = self.desktop.root_folder / f"{name}-has-said-it"
            self.desktop.start(["foot", "-T", name, sys.executable, "-c", PROGRAM_IN_TERMINAL, PROGRAM, name, said])
            wait_until(said.exists, f"the session in {name}")
            wait_until(lambda: self.active() == [name], f"{name} to be active")
        # The one heard of last is on top.
        for row, name in ((1, "shop"), (0, "bakery")):
            self.desktop.open_page("claude")
            self.desktop.wait_for_notch(*EXPANDED)
            self.click_at(self.middle, 50 + 42 * row)
            start = time.monotonic()
            wait_until(lambda: self.active() == [name], f"{name} to be active")
            print(f"to the window in {1000 * (time.monotonic() - start):.0f} ms")
            self.leave_notch()
            self.desktop.wait_for_notch(*CLAUDE)

    def test_two_fingers_open_and_close_it(self):
        self.desktop.start_overlay()
        self.hover_notch()
        self.desktop.wait_for_notch(*HOVERED)
        for way, size in ((4, EXPANDED), (-4, HOVERED)):
            for _ in range(6):
                self.desktop.play("scroll", 0, way)
            self.desktop.play("lift")
            self.desktop.wait_for_notch(*size)

    def test_it_follows_its_output(self):
        self.desktop.start_overlay()
        self.start_working_session()
        for command, points in (("resolution 1000x700", 1000), ("scale 2", 500), ("transform 90", 350)):
            with self.subTest(command):
                self.desktop.command("output HEADLESS-1", command)
                def notch_is_in_the_middle(points=points):
                    picture = self.desktop.picture(0, 0, points, 20)
                    begin = picture.width // 2 - 5
                    return picture.count((0, 0, 0), begin, 2, begin + 10, 8) == 60
                wait_until(notch_is_in_the_middle, "the notch in the middle of the output")

    def test_notes_survive_the_end_of_the_compositor(self):
        self.start_neighbour()
        self.desktop.start_overlay()
        self.desktop.run("--open", "notes")
        wait_until(lambda: not self.neighbour_has_keyboard(), "the keyboard")
        self.desktop.wait_for_notch(*EXPANDED)
        notes = self.desktop.home / ".local/share/Tarnwick/notes.txt"
        self.desktop.key("w")
        wait_until(lambda: notes.exists() and notes.read_text() == "w", "the first letter to be saved")
        before = self.desktop.top().data
        self.desktop.key("m")

        def letter_shows():
            now = self.desktop.top().data
            # The caret alone is sixteen pixels, here and there.
            return sum(before[i:i + 4] != now[i:i + 4] for i in range(0, len(now), 4)) > 40
        wait_until(letter_shows, "the letter")
        self.desktop.compositor.kill()
        wait_until(lambda: self.desktop.overlay.poll() is not None, "the overlay to end")
        self.assertEqual(notes.read_text(), "wm")

    def drag(self, begin, end, arrived, x=None):
        """Down or up, and about the end until it has arrived: a compositor may look there at the next motion only."""
        x = x or self.middle
        self.desktop.move_pointer(x, begin)
        self.desktop.press()
        for step in range(1, 21):
            self.desktop.move_pointer(x, begin + (end - begin) * step // 20)
        ways = itertools.cycle((0, 2))
        wait_until(lambda: self.desktop.move_pointer(self.middle + next(ways), end) or arrived(), "the drag to arrive")

    def test_files_of_other_programs_are_dropped_on_it(self):
        file = self.desktop.home / "plan.pdf"
        file.write_text("x")
        self.start_neighbour(file)
        self.desktop.start_overlay()
        self.drag(600, 0, lambda: self.desktop.top().notch()[1] > 100)
        self.desktop.release()
        wait_until(lambda: self.desktop.defaults().get("trayItems") == [str(file)], "the dropped file")
        self.leave_notch()
        self.desktop.wait_for_notch(*HIDDEN)

    def test_files_are_dragged_out_to_other_programs(self):
        file = self.desktop.home / "plan.pdf"
        file.write_text("x")
        self.start_neighbour()
        self.desktop.start_overlay({"trayItems": [str(file)]})
        self.desktop.open_page("tray")
        self.desktop.wait_for_notch(*EXPANDED)
        self.drag(90, 600, lambda: "entered" in self.heard(), self.middle - 225)
        self.desktop.release()
        self.hears(file.as_uri())
        self.desktop.wait_for_notch(*HIDDEN)
