"""Plays `Tarnwick --demo` on a private desktop and saves a picture of every step.

usage: play_demonstration.py FOLDER"""

import argparse
import time
from pathlib import Path

from desktop import PROGRAM, Desktop, wait_until
from picture import dusk

arguments = argparse.ArgumentParser()
arguments.add_argument("folder", type=Path)
arguments = arguments.parse_args()

# When each step's animation has come to rest; the shortest step lasts one second.
SETTLING_SECONDS = 0.8
STEPS = ["1-prompt", "2-running", "3-permission", "4-thinking", "5-editing", "6-done"]


arguments.folder.mkdir(parents=True, exist_ok=True)
print("Starting a virtual display, a window manager, a compositor and a session bus of their own …", flush=True)
with Desktop() as desktop:
    desktop.paint_wallpaper(dusk(260))

    def save(name):
        width = 700
        path = arguments.folder / f"{name}.png"
        desktop.picture((desktop.size[0] - width) // 2, 0, width, 200).save(path)
        print(f"  {path}", flush=True)

    print("Starting the overlay …", flush=True)
    desktop.start_overlay()
    print("Playing Tarnwick --demo (13 seconds); a picture of every step:", flush=True)
    monitor = desktop.start(["dbus-monitor", "type='signal',interface='dev.tarnwick',member='event'"])

    def wait_to_hear(what, times=1):
        def look():
            if monitor.poll() is not None:
                raise AssertionError(f"dbus-monitor ended with {monitor.returncode}")
            return monitor.log.read_text(errors="replace").count(f"member={what}") >= times
        wait_until(look, f"the bus to carry {what} for the {times}. time")

    wait_to_hear("NameLost")  # from then on it hears everything
    demonstration = desktop.start([PROGRAM, "--demo"])
    for number, step in enumerate(STEPS, 1):
        wait_to_hear("event", number)
        time.sleep(SETTLING_SECONDS)
        save(step)
    wait_until(lambda: demonstration.poll() is not None, "the demonstration to end")
    desktop.move_pointer(desktop.size[0] // 2, 5)
    desktop.click()
    time.sleep(SETTLING_SECONDS)
    save("7-expanded")
    desktop.overlay_runs()
print(f"The pictures are in {arguments.folder.resolve()}")
