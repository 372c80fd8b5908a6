"""Behaves as Claude Code does towards its hooks: reads the settings file and runs the commands of an event through
the shell, with the event as JSON on standard input."""

import json
import re
import subprocess


class ClaudeCode:
    def __init__(self, desktop, session, folder="/src/shop"):
        self.desktop, self.session, self.folder = desktop, session, folder
        self.environment = dict(desktop.environment)

    def fire(self, event, **fields):
        settings = json.loads((self.desktop.home / ".claude/settings.json").read_text())
        body = json.dumps({"session_id": self.session, "cwd": self.folder, "hook_event_name": event,
                           "transcript_path": "/dev/null", **fields}).encode()
        results = []
        for group in settings.get("hooks", {}).get(event, []):
            matcher = group.get("matcher", "*")
            if matcher not in ("", "*") and not re.fullmatch(matcher, fields.get("tool_name", "")):
                continue
            for hook in group["hooks"]:
                results.append(subprocess.run(["sh", "-c", hook["command"]], input=body, capture_output=True,
                                              env=self.environment, cwd=self.desktop.home,
                                              timeout=hook["timeout"]))
        assert results, f"no hook is installed for {event}"
        for result in results:
            assert (result.returncode, result.stdout, result.stderr) == (0, b"", b""), result
        return results
