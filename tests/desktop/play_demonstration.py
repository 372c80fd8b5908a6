"""Plays the demonstration on a private desktop and saves a picture of every step.

usage: play_demonstration.py FOLDER [LANGUAGE]"""

import argparse
import time
from pathlib import Path

from desktop import Desktop
from picture import dusk

arguments = argparse.ArgumentParser()
arguments.add_argument("folder", type=Path)
arguments.add_argument("language", nargs="?", default="en")
arguments = arguments.parse_args()

# When each step's animation has come to rest, but before an indicator goes.
SETTLING_SECONDS = 1.2


def session(name, event, **fields):
    """A hook event of a session that takes part in the demonstration."""
    return {"session_id": f"showcase-{name}", "cwd": f"/src/{name}", "hook_event_name": event, **fields}


# The name of a picture, and what leads to it: commands with their arguments, and hook events.
STEPS = {
    "01-session": [session("atlas", "UserPromptSubmit", prompt="Draw the coast line"),
                   session("atlas", "PreToolUse", tool_name="Bash", tool_input={"command": "npm test"})],
    "02-waiting": [session("bakery", "Notification", message="Claude needs your permission to use Bash")],
    "03-sessions": [("expand", "claude")],
    "04-music": [("collapse",), ("clearclaude",), ("play",)],
    "05-home": [("expand", "home")],
    "06-next-track": [("track", "1")],
    "07-audio": [("tab", "audio")],
    "08-output": [("output", "2")],
    "09-tray": [("tab", "tray")],
    "10-drop": [("collapse",), ("drag", "target")],
    "11-dropped": [("trayadd", "Mockup.png"), ("trayadd", "Quarterly report.pdf"), ("trayadd", "notes.txt")],
    "12-notes": [("tab", "notes"), ("type", "Buy flour, 2 kg")],
    "13-peek": [("collapse",), ("pause",), ("peek",)],
    "14-volume": [("peek", "off"), ("hud", "0.62")],
    "15-mute": [("mute",)],
    "16-brightness": [("brightness", "0.4")],
    "17-power": [("power",)],
    "18-low-power": [("lowpower",)],
    "19-device": [("device",)],
    "20-low-battery": [("lowbattery",)],
    "21-end": [("dismiss",), ("end",)],
}

arguments.folder.mkdir(parents=True, exist_ok=True)
print("Starting a virtual display, a window manager, a compositor and a session bus of their own …", flush=True)
with Desktop() as desktop:
    desktop.paint_wallpaper(dusk(260))
    print("Starting the overlay …", flush=True)
    desktop.start_overlay()
    print("Playing the demonstration; a picture of every step:", flush=True)
    desktop.run("--showcase", "begin", arguments.language)
    for name, parts in STEPS.items():
        for part in parts:
            if isinstance(part, dict):
                desktop.hook(**part)
            else:
                desktop.run("--showcase", *part)
        time.sleep(SETTLING_SECONDS)
        width = 700
        path = arguments.folder / f"{name}.png"
        desktop.picture((desktop.size[0] - width) // 2, 0, width, 200).save(path)
        print(f"  {path}", flush=True)
        desktop.overlay_runs()
print(f"The pictures are in {arguments.folder.resolve()}")
