"""Behaves as Claude Code does towards its hooks: reads the settings file and runs the commands of an event through
the shell, with the event as JSON on standard input."""

import json
import re
import subprocess


class ClaudeCode:
    def __init__(self, desktop, session, folder="/src/shop"):
        self.desktop, self.session, self.folder = desktop, session, folder
        self.environment = dict(desktop.environment)

    def _hooks(self, event, fields):
        """The commands of an event with their time-outs, and what they read."""
        settings = json.loads((self.desktop.home / ".claude/settings.json").read_text())
        body = json.dumps({"session_id": self.session, "cwd": self.folder, "hook_event_name": event,
                           "transcript_path": "/dev/null", **fields}).encode()
        hooks = []
        for group in settings.get("hooks", {}).get(event, []):
            matcher = group.get("matcher", "*")
            if matcher in ("", "*") or re.fullmatch(matcher, fields.get("tool_name", "")):
                hooks += [(hook["command"], hook["timeout"]) for hook in group["hooks"]]
        assert hooks, f"no hook is installed for {event}"
        return hooks, body

    def fire(self, event, **fields):
        hooks, body = self._hooks(event, fields)
        results = [subprocess.run(["sh", "-c", command], input=body, capture_output=True, env=self.environment,
                                  cwd=self.desktop.home, timeout=timeout) for command, timeout in hooks]
        for result in results:
            assert (result.returncode, result.stdout, result.stderr) == (0, b"", b""), result
        return results

    def ask(self, tool, **tool_input):
        """Asks for a permission. Returns the hook, which waits for the answer."""
        hooks, body = self._hooks("PermissionRequest", {"tool_name": tool, "tool_input": tool_input})
        hook = subprocess.Popen(["sh", "-c", "exec " + hooks[0][0]], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                env=self.environment, cwd=self.desktop.home)
        hook.stdin.write(body)
        hook.stdin.close()
        self.desktop.processes.append(hook)
        return hook
