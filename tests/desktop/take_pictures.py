"""Takes the pictures of the documentation from the real overlay.

usage: take_pictures.py FOLDER"""

import sys
import time
from pathlib import Path

from desktop import Desktop
from picture import dusk

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
        desktop.hook(session_id=session, cwd=f"/src/{project}", hook_event_name=name, **fields)

    desktop.start_overlay()
    event("1", "atlas", "UserPromptSubmit", prompt="Draw the coast line")
    event("1", "atlas", "PreToolUse", tool_name="Bash", tool_input={"command": "npm test"})
    event("2", "bakery", "UserPromptSubmit", prompt="Mend the oven")
    event("2", "bakery", "PreToolUse", tool_name="Edit", tool_input={"file_path": "/src/bakery/oven.py"})
    wings = resting_picture(44)
    event("3", "harbour", "Notification", notification_type="permission_prompt",
          message="Claude needs your permission to use Bash")
    banner = resting_picture(108)
    event("4", "library", "Stop")
    desktop.move_pointer(desktop.size[0] // 2, 10)
    desktop.click()
    sessions = resting_picture(188)
    desktop.overlay_runs()
wings.above(banner).above(sessions).save(folder / "notch.png")
