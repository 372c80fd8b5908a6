"""Takes the pictures of the documentation from the real overlay.

usage: take_pictures.py FOLDER"""

import functools
import sys
import time
from pathlib import Path

from desktop import Desktop
from picture import Picture, dusk

SCALE = 2
# When an animation has come to rest.
SETTLING_SECONDS = 1.5
WIDTH = 640 * SCALE
folder = Path(sys.argv[1])
folder.mkdir(parents=True, exist_ok=True)

with Desktop(size=(1280 * SCALE, 720 * SCALE), scale=SCALE) as desktop:
    desktop.paint_wallpaper(dusk(320 * SCALE))
    left = (desktop.size[0] - WIDTH) // 2

    def resting_picture(height):
        time.sleep(SETTLING_SECONDS)
        return desktop.picture(left, 0, WIDTH, height * SCALE)

    def event(session, project, name, **fields):
        desktop.hook(session_id=f"showcase-{session}", cwd=f"/src/{project}", hook_event_name=name, **fields)

    def show(*commands, height=188):
        """What the demonstration shows after these commands."""
        for command in commands:
            desktop.run("--showcase", *command)
        return resting_picture(height)

    def save(name, *pictures):
        functools.reduce(Picture.above, pictures).save(folder / f"{name}.png")

    desktop.start_overlay()
    desktop.run("--showcase", "begin", "en")
    event("1", "atlas", "UserPromptSubmit", prompt="Draw the coast line")
    event("1", "atlas", "PreToolUse", tool_name="Bash", tool_input={"command": "npm test"})
    event("2", "bakery", "UserPromptSubmit", prompt="Mend the oven")
    event("2", "bakery", "PreToolUse", tool_name="Edit", tool_input={"file_path": "/src/bakery/oven.py"})
    wings = resting_picture(44)
    event("3", "harbour", "PermissionRequest", tool_name="Bash", tool_input={"command": "git push origin tide"})
    event("3", "harbour", "Notification", notification_type="permission_prompt",
          message="Claude needs your permission")
    banner = resting_picture(108)
    event("4", "library", "Stop")
    desktop.run("--showcase", "dismiss")
    save("notch", wings, banner, show(("expand", "claude")))
    desktop.run("--showcase", "clearclaude")
    save("home", show(("collapse",), ("play",), height=44), show(("expand", "home")))
    save("audio", show(("tab", "audio")))
    save("tray", show(*(("trayadd", name) for name in ("Mockup.png", "Report.pdf", "Budget.ods", "Minutes.txt"))),
         show(("drag", "target")))
    desktop.run("--showcase", "drag", "off")
    desktop.run("--showcase", "tab", "notes")
    desktop.run("--showcase", "type", "Flour, two kilos")
    save("notes", show())
    desktop.run("--showcase", "pause")
    save("indicators", *(show(("collapse",), command, height=44) for command in (
        ("hud", "0.62"), ("brightness", "0.4"), ("power",), ("device", "Headphones"))))
    desktop.run("--showcase", "end")
    desktop.overlay_runs()
