"""The tray with real programs around it: files are dragged out, opened and shown, by pointer and by keys."""

import os
import subprocess
import unittest
from pathlib import Path

import dbus

from desktop import BUILD, wait_until
from desktop_test import EXPANDED, HIDDEN, DesktopTest


class Tray(DesktopTest):
    def setUp(self):
        super().setUp()
        # Names need not be text.
        self.files = [self.desktop.home / os.fsdecode(name) for name in (b"Plan f\xfcr morgen.txt", b"picture.png")]
        for file in self.files:
            file.write_text("x")
        # The first item, beside the shelf's left edge.
        self.item = (self.middle - EXPANDED[0] // 2 + 76, 85)

    def open_tray(self):
        self.desktop.open_page("tray")
        self.desktop.wait_for_notch(*EXPANDED)

    def start_target(self, *command):
        target = self.desktop.start([*command, 500, 450, 200, 200])
        wait_until(lambda: "ready" in target.log.read_text(), "the window to drop on")
        return target

    def drag_item_to(self, x, y, arrived):
        """Drags as a hand does: along a way, and still moving until what is below has noticed."""
        start_x, start_y = self.item
        self.desktop.move_pointer(start_x, start_y)
        self.desktop.press()
        for step in range(31):
            self.desktop.move_pointer(start_x + (x - start_x) * step // 30, start_y + (y - start_y) * step // 30)
        steps = iter(range(10**6))
        wait_until(lambda: self.desktop.move_pointer(x + next(steps) % 5, y) or arrived(), "the target to notice")

    def test_files_are_dragged_out_to_other_programs(self):
        self.desktop.start_overlay({"trayItems": [str(file) for file in self.files]})
        gtk = Path(__file__).with_name("gtk_drop_target.py")
        for command in (["/usr/bin/python3", gtk], [BUILD / "tests/test-platform", "--drop"]):
            target = self.start_target(*command)
            self.open_tray()
            self.drag_item_to(600, 550, lambda: "entered" in target.log.read_text())
            if gtk in command:
                self.key("Escape")
                wait_until(lambda: "left" in target.log.read_text(), "the drag to be given up")
                self.desktop.release()
                self.assertNotIn("file:", target.log.read_text())
                self.desktop.wait_for_notch(*HIDDEN)
                self.open_tray()
                self.drag_item_to(600, 550, lambda: target.log.read_text().endswith("entered\n"))
            self.desktop.release()
            wait_until(lambda: self.files[0].as_uri() in target.log.read_text(), "the dropped file")
            self.desktop.wait_for_notch(*HIDDEN)
            target.terminate()
            target.wait()
        self.assertEqual(self.desktop.defaults()["trayItems"], [str(file) for file in self.files])

    def key(self, *names):
        subprocess.run(["xdotool", "key", "--delay", "50", *names], env=self.desktop.environment, check=True)

    def test_files_are_opened_and_shown_by_menu_and_keys(self):
        opened = self.desktop.home / "opened"
        program = self.desktop.home / "bin/xdg-open"
        program.parent.mkdir()
        program.write_text(f'#!/bin/sh\nprintf %s "$1" > "{opened}"\n')
        program.chmod(0o755)
        self.desktop.environment["PATH"] = f"{program.parent}:{self.desktop.environment['PATH']}"
        name, path = "org.freedesktop.FileManager1", "/org/freedesktop/FileManager1"
        self.desktop.start(["/usr/bin/python3", "-m", "dbusmock", "--session", name, path, name])
        wait_until(lambda: self.desktop.bus.name_has_owner(name), "the file manager")
        manager = dbus.Interface(self.desktop.bus.get_object(name, path), "org.freedesktop.DBus.Mock")
        manager.AddMethod(name, "ShowItems", "ass", "", "")

        self.desktop.start_overlay({"trayItems": [str(file) for file in self.files]})
        focus = self.desktop.x.get_input_focus().focus
        self.open_tray()
        self.desktop.move_pointer(*self.item)
        # A press, a menu, and keys for it.
        self.desktop.click(3)
        wait_until(lambda: self.desktop.x.get_input_focus().focus != focus, "the keyboard for the menu")
        self.key("Down", "Down", "Return")
        calls = wait_until(lambda: manager.GetMethodCalls("ShowItems"), "the file manager to be asked")
        self.assertEqual(calls[0][1], [[self.files[0].as_uri()], ""])
        wait_until(lambda: self.desktop.x.get_input_focus().focus == focus, "the keyboard to be given back")

        self.desktop.click()
        self.desktop.click()
        wait_until(lambda: opened.exists() and opened.read_text() == self.files[0].as_uri(), "the file to be opened")


if __name__ == "__main__":
    unittest.main()
