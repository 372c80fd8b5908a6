"""A music player that the tests put on the session bus, and hold the strings of."""

import json
import queue
import signal
import subprocess
import sys
import threading

ROOT = "org.mpris.MediaPlayer2"
PLAYER = ROOT + ".Player"
PATIENCE = 30


class MediaPlayer:
    """The test's side: starts the player as a program of its own, tells it what to play, hears what it is told."""

    def __init__(self, name, environment, **properties):
        self.process = subprocess.Popen(["/usr/bin/python3", __file__, name, json.dumps(properties)],
                                        stdin=subprocess.PIPE, stdout=subprocess.PIPE, env=environment, text=True)
        self.pid = self.process.pid
        self.calls = queue.Queue()
        self.listener = threading.Thread(target=self._listen, daemon=True)
        self.listener.start()
        assert self.calls.get(timeout=PATIENCE) == ["ready"]

    def _listen(self):
        for line in self.process.stdout:
            self.calls.put(json.loads(line))

    def next_call(self):
        """The next method that somebody has called, with its arguments."""
        return self.calls.get(timeout=PATIENCE)

    def tell(self, **order):
        self.process.stdin.write(json.dumps(order) + "\n")
        self.process.stdin.flush()

    def play(self, **properties):
        """Changes properties and says so; see `properties_from` for their names."""
        self.tell(set=properties)

    def hang(self):
        self.process.send_signal(signal.SIGSTOP)

    def kill(self):
        self.process.kill()
        self.process.wait()
        self.listener.join()
        self.process.stdin.close()
        self.process.stdout.close()


def properties_from(wanted):
    """The protocol's properties from short names: status, position, can_seek, rate, metadata (its keys without prefix)."""
    import dbus
    found = {}
    if "status" in wanted:
        found["PlaybackStatus"] = wanted["status"]
    if "position" in wanted:
        found["Position"] = dbus.Int64(wanted["position"] * 1_000_000)
    if "can_seek" in wanted:
        found["CanSeek"] = dbus.Boolean(wanted["can_seek"])
    if "rate" in wanted:
        found["Rate"] = dbus.Double(wanted["rate"])
    if "metadata" in wanted:
        kinds = {"trackid": ("mpris:trackid", dbus.ObjectPath), "title": ("xesam:title", str),
                 "artist": ("xesam:artist", lambda names: dbus.Array(names, signature="s")),
                 "album": ("xesam:album", str), "art": ("mpris:artUrl", str), "url": ("xesam:url", str),
                 "length": ("mpris:length", lambda seconds: dbus.Int64(seconds * 1_000_000)),
                 "length_text": ("mpris:length", str), "title_number": ("xesam:title", dbus.Int32)}
        found["Metadata"] = dbus.Dictionary({kinds[key][0]: kinds[key][1](value)
                                             for key, value in wanted["metadata"].items()}, signature="sv")
    return found


def play_role(name, initial):
    import dbus
    import dbus.bus
    import dbus.mainloop.glib
    import dbus.service
    import os
    from gi.repository import GLib

    def say(*words):
        print(json.dumps(words), flush=True)

    class Player(dbus.service.Object):
        deaf = initial.get("deaf", False)
        state = {"PlaybackStatus": "Stopped", "Position": dbus.Int64(0),
                 "Metadata": dbus.Dictionary({}, signature="sv"), **properties_from(initial)}

        @dbus.service.method("org.freedesktop.DBus.Properties", in_signature="s", out_signature="a{sv}")
        def GetAll(self, interface):
            root = {"DesktopEntry": "test-player", "CanRaise": True}
            return dbus.Dictionary(self.state if interface == PLAYER else root, signature="sv")

        @dbus.service.method("org.freedesktop.DBus.Properties", in_signature="ss", out_signature="v")
        def Get(self, interface, key):
            return self.state[key]

        @dbus.service.signal("org.freedesktop.DBus.Properties", signature="sa{sv}as")
        def PropertiesChanged(self, interface, changed, invalidated):
            pass

        @dbus.service.signal(PLAYER, signature="x")
        def Seeked(self, position):
            pass

        def set(self, changed):
            self.state.update(changed)
            told = {key: value for key, value in changed.items() if key != "Position"}
            self.PropertiesChanged(PLAYER, dbus.Dictionary(told, signature="sv"), [])

        @dbus.service.method(PLAYER)
        def PlayPause(self):
            say("PlayPause")
            if not self.deaf:
                self.set({"PlaybackStatus": "Paused" if self.state["PlaybackStatus"] == "Playing" else "Playing"})

        @dbus.service.method(PLAYER)
        def Next(self):
            say("Next")

        @dbus.service.method(PLAYER)
        def Previous(self):
            say("Previous")

        @dbus.service.method(PLAYER, in_signature="ox")
        def SetPosition(self, track, position):
            say("SetPosition", track, position)
            if not self.deaf:
                self.state["Position"] = dbus.Int64(position)

        @dbus.service.method(ROOT)
        def Raise(self):
            say("Raise")

        @dbus.service.method(PLAYER, in_signature="x")
        def Seek(self, offset):
            say("Seek", offset)

    dbus.mainloop.glib.DBusGMainLoop(set_as_default=True)
    bus = dbus.bus.BusConnection(os.environ["DBUS_SESSION_BUS_ADDRESS"])
    player = Player(bus, "/org/mpris/MediaPlayer2")
    names = [dbus.service.BusName(f"{ROOT}.{name}", bus)]
    loop = GLib.MainLoop()

    def obey(line):
        order = json.loads(line)
        if "set" in order:
            player.set(properties_from(order["set"]))
        if "seeked" in order:
            player.Seeked(order["seeked"])
        for number in range(order.get("flood", 0)):
            track = {"title": f"Flood {number}", "trackid": "/" + "x" * order.get("size", 1)}
            player.set(properties_from({"metadata": track, "status": "Playing"}))
        for number in range(order.get("names", 0)):
            names.append(dbus.service.BusName(f"{ROOT}.{name}{number}", bus))
        if "invalidate" in order:
            player.state.update(properties_from(order["invalidate"]))
            player.PropertiesChanged(PLAYER, dbus.Dictionary({}, signature="sv"), ["Metadata"])

    def listen():
        for line in sys.stdin:
            GLib.idle_add(obey, line)
        GLib.idle_add(loop.quit)

    threading.Thread(target=listen, daemon=True).start()
    say("ready")
    loop.run()


if __name__ == "__main__":
    play_role(sys.argv[1], json.loads(sys.argv[2]))
