"""Plays `Tarnwick --demo` on a private desktop and saves a picture of every step.

usage: play_demonstration.py FOLDER"""

import argparse
import subprocess
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
    with subprocess.Popen(["dbus-monitor", "type='signal',interface='dev.tarnwick',member='event'"],
                          env=desktop.environment, stdout=subprocess.PIPE, text=True) as monitor:
        try:
            while "member=NameLost" not in monitor.stdout.readline():
                pass  # from then on it hears everything
            demonstration = desktop.start([PROGRAM, "--demo"])
            for step in STEPS:
                while "member=event" not in monitor.stdout.readline():
                    pass
                time.sleep(SETTLING_SECONDS)
                save(step)
            wait_until(lambda: demonstration.poll() is not None, "the demonstration to end")
        finally:
            monitor.terminate()
    desktop.move_pointer(desktop.size[0] // 2, 5)
    desktop.click()
    time.sleep(SETTLING_SECONDS)
    save("7-expanded")
    desktop.overlay_runs()
print(f"The pictures are in {arguments.folder.resolve()}")
