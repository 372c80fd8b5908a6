"""The media bridge as the overlay runs it: players on a bus of their own, lines out, commands in."""

import base64
import fcntl
import json
import os
import queue
import random
import signal
import struct
import subprocess
import tempfile
import termios
import threading
import time
import unittest
from pathlib import Path

from desktop import BUILD, PATIENCE, wait_until
from media_player import MediaPlayer
from picture import Picture

SCRIPT = "\n".join(["use DynaLoader;",
                    "my $l = DynaLoader::dl_load_file($ARGV[0], 0) or die DynaLoader::dl_error();",
                    'my $s = DynaLoader::dl_find_symbol($l, "tarnwick_stream") or die "symbol";',
                    'DynaLoader::dl_install_xsub("main::tarnwick_stream", $s);',
                    "tarnwick_stream();"])
BRIDGE = ["/usr/bin/perl", "-e", SCRIPT, str(BUILD / "lib/Tarnwick/MediaBridge.so")]
# Programs with a network of their own, in which 203.0.113.7 is a public address and 10.1.2.3 a private one.
NETWORK = ["unshare", "--net", "--map-current-user", "--keep-caps"]
# Serves a picture there, notes what it is asked for, and becomes the command that follows.
SERVER = ["/usr/bin/python3", "-c", """
import ctypes, http.server, os, subprocess, sys
for address in "203.0.113.7/32", "10.1.2.3/32":
    subprocess.run(["ip", "address", "add", address, "dev", "lo"], check=True)
subprocess.run(["ip", "link", "set", "lo", "up"], check=True)
picture, log = sys.argv[1:3]

class Server(http.server.BaseHTTPRequestHandler):
    def do_GET(self):
        with open(log, "a") as asked:
            print(self.headers["Host"] + self.path, file=asked)
        self.send_response(302 if self.path.startswith("/to/") else 200 if self.path == "/picture" else 404)
        self.send_header("Location", "http://" + self.path[4:])
        self.end_headers()
        self.wfile.write(open(picture, "rb").read())

    def log_message(self, *_):
        pass

server = http.server.ThreadingHTTPServer(("", 8000), Server)
if os.fork():
    os.execv(sys.argv[3], sys.argv[3:])
ctypes.CDLL(None).prctl(1, 9)  # ends with its parent
os.dup2(os.open("/dev/null", os.O_RDWR), 0)
os.dup2(0, 1)
server.serve_forever()
"""]
SONG = {"title": "Song", "artist": ["Ann", "Bob"], "album": "Record", "trackid": "/track/1", "length": 200}


class MediaBridge(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="tarnwick-bridge-")
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)
        self.address = f"unix:path={folder.name}/bus"
        self.environment = {**os.environ, "DBUS_SESSION_BUS_ADDRESS": self.address}
        self.start_bus()

    def start_bus(self):
        self.bus = subprocess.Popen(["dbus-daemon", "--session", "--nofork", "--print-address",
                                     f"--address={self.address}"], stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
        self.bus.stdout.readline()
        self.addCleanup(self.end, self.bus)

    def end(self, process):
        process.kill()
        process.wait()
        for stream in (process.stdin, process.stdout):
            if stream:
                stream.close()

    def start_bridge(self, listen=True, within=()):
        self.bridge = subprocess.Popen([*within, *BRIDGE], stdin=subprocess.PIPE, stdout=subprocess.PIPE, env=self.environment)
        self.addCleanup(self.end, self.bridge)
        self.lines = queue.Queue()
        if listen:
            self.listen()

    def listen(self):
        def read(lines=self.lines, stdout=self.bridge.stdout):
            for line in stdout:
                lines.put(json.loads(line))
        threading.Thread(target=read, daemon=True).start()

    def player(self, name="one", **properties):
        properties.setdefault("status", "Playing")
        properties.setdefault("metadata", SONG)
        player = MediaPlayer(name, self.environment, **properties)
        self.addCleanup(player.kill)
        return player

    def wait_for_line(self, condition=lambda line: True, patience=PATIENCE, **values):
        """The next line that satisfies the condition and has these values; the others are dropped."""
        end, seen = time.monotonic() + patience, []
        while time.monotonic() < end:
            try:
                line = self.lines.get(timeout=0.2)
            except queue.Empty:
                continue
            if condition(line) and all(line.get(key) == value for key, value in values.items()):
                return line
            seen.append({key: value for key, value in line.items() if key != "artwork"})
        raise AssertionError(f"no line with {values}; there were {seen[-5:]}")

    def processor_time(self):
        """Of the bridge, in seconds."""
        user, system = Path(f"/proc/{self.bridge.pid}/stat").read_text().rsplit(")", 1)[1].split()[11:13]
        return (int(user) + int(system)) / os.sysconf("SC_CLK_TCK")

    def command(self, line):
        self.bridge.stdin.write(line.encode() + b"\n")
        self.bridge.stdin.flush()

    # What plays

    def test_a_playing_track_is_told_whole(self):
        player = self.player(position=12)
        self.start_bridge()
        line = self.wait_for_line(lambda line: "pid" in line and "desktopEntry" in line)
        self.assertLess(abs(line["elapsed"] + time.time() - line["timestamp"] - 12), PATIENCE)
        self.assertGreaterEqual(line["elapsed"], 12)
        self.assertEqual({key: line.get(key) for key in
                          ("title", "artist", "album", "duration", "rate", "playing", "artworkId", "pid",
                           "desktopEntry", "canRaise")},
                         {"title": "Song", "artist": "Ann, Bob", "album": "Record", "duration": 200, "rate": 1,
                          "playing": True, "artworkId": 0, "pid": player.pid, "desktopEntry": "test-player",
                          "canRaise": True})
        self.assertNotIn("canSeek", line)
        player.play(can_seek=False)
        self.wait_for_line(canSeek=False, title="Song")

    def test_metadata_of_every_shape(self):
        self.start_bridge()
        self.assertNotIn("title", self.wait_for_line())
        player = self.player()
        cases = [({"title": "x" * 10_000}, "x" * 500, 0),
                 ({"title": "é" * 5000}, "é" * 250, 0),
                 ({"title": "B", "length_text": "long"}, "B", 0),
                 ({"title": "D", "length": (2**63 - 1) // 1_000_000}, "D", 0),
                 ({"title_number": 5, "url": "file:///music/by%20night.ogg?x#y"}, "by night.ogg", 0),
                 ({"title": 'Quotes " and \\ and \u2028 and ✨\n', "url": "x"}, 'Quotes " and \\ and \u2028 and ✨\n', 0)]
        for metadata, title, duration in cases:
            player.play(metadata=metadata)
            self.assertEqual(self.wait_for_line(title=title)["duration"], duration, metadata)
        player.tell(invalidate={"metadata": {"title": "Asked for"}})
        self.wait_for_line(title="Asked for")

    def test_the_player_that_plays_wins_and_else_the_one_that_did_last(self):
        self.start_bridge()
        first = self.player("first", metadata={"title": "1"})
        second = self.player("second", metadata={"title": "2"}, status="Paused")
        self.wait_for_line(title="1", playing=True)
        second.play(status="Playing")
        self.wait_for_line(title="2", playing=True)
        second.play(status="Paused")
        self.wait_for_line(title="1", playing=True)
        first.play(status="Paused")
        self.wait_for_line(title="1", playing=False)
        second.play(status="Playing")
        second.play(status="Paused")
        self.wait_for_line(title="2", playing=False)
        second.kill()
        self.wait_for_line(title="1", playing=False)
        first.play(status="Stopped")
        self.assertNotIn("title", self.wait_for_line(lambda line: line.get("title") != "1"))

    def test_a_stop_between_two_tracks_is_not_told(self):
        player = self.player()
        self.start_bridge()
        self.wait_for_line(title="Song")
        player.play(status="Stopped")
        player.play(status="Playing", metadata={"title": "Next"})
        line = self.wait_for_line(lambda line: line.get("title") != "Song")
        self.assertEqual(line["title"], "Next")

    def test_position_follows_pauses_seeks_rates_and_tracks(self):
        player = self.player(position=12)
        self.start_bridge()
        self.wait_for_line(title="Song")
        player.tell(seeked=2**63 - 1)
        player.tell(seeked=90_000_000)
        self.assertAlmostEqual(self.wait_for_line(lambda line: line["elapsed"] > 60)["elapsed"], 90, delta=1)
        player.play(rate=50, position=90)
        fast = self.wait_for_line(rate=50)
        player.play(status="Paused", position=2**43)
        paused = self.wait_for_line(playing=False)
        passed = paused["timestamp"] - fast["timestamp"]
        self.assertAlmostEqual(paused["elapsed"] - fast["elapsed"], 50 * passed, delta=passed)
        player.play(metadata={"title": "Next", "trackid": "/track/2"}, position=0, rate=1, status="Playing")
        self.assertLess(self.wait_for_line(title="Next", rate=1, playing=True)["elapsed"], 1)

    # Covers

    def cover(self, colour=None, name=None):
        """A picture of that colour, or of noise."""
        path = self.folder / f"cover {name or colour}.png"
        Picture(0, 0, 128, 128, bytes((*colour, 255)) * 128 * 128 if colour else random.randbytes(4 * 128 * 128)).save(path)
        return path.as_uri()

    def wait_for_cover(self, **values):
        line = self.wait_for_line(lambda line: "artwork" in line, **values)
        picture = base64.b64decode(line["artwork"])
        self.assertEqual((picture[1:4], *struct.unpack(">II", picture[16:24])), (b"PNG", 128, 128))
        return line

    def test_a_cover_is_sent_once_and_again_when_it_differs(self):
        first, second = self.cover((9, 9, 9)), self.cover((200, 9, 9))
        player = self.player(metadata={"title": "1", "art": first})
        self.start_bridge()
        line = self.wait_for_cover()
        player.play(status="Paused")
        paused = self.wait_for_line(playing=False)
        self.assertEqual((paused["artworkId"], "artwork" in paused), (line["artworkId"], False))
        player.play(metadata={"title": "1", "album": "told later, without the cover"})
        self.assertEqual(self.wait_for_line(album="told later, without the cover")["artworkId"], line["artworkId"])
        player.play(metadata={"title": "2", "art": second}, status="Playing")
        other = self.wait_for_cover()
        self.assertNotIn(other["artworkId"], (0, line["artworkId"]))
        player.play(metadata={"title": "3"})
        self.wait_for_line(title="3", artworkId=0)
        player.play(metadata={"title": "4", "art": second})
        self.assertEqual(self.wait_for_cover()["artwork"], other["artwork"])
        player.play(metadata={"title": "5", "art": "file:///nonexistent"})
        self.wait_for_line(title="5", artworkId=0)
        # A new picture at an old address, with a new track.
        self.cover((9, 200, 9), name=(9, 9, 9))
        player.play(metadata={"title": "6", "art": first})
        self.assertNotIn(self.wait_for_cover()["artwork"], (line["artwork"], other["artwork"]))

    def test_a_cover_that_hangs_holds_up_nothing(self):
        # Whoever opens this file waits for us, as if for the server of a network folder that is gone.
        hung = self.folder / "hung"
        hung.write_bytes(b"x")
        file = os.open(hung, os.O_RDWR)
        self.addCleanup(os.close, file)
        self.addCleanup(signal.signal, signal.SIGIO, signal.signal(signal.SIGIO, signal.SIG_IGN))
        fcntl.fcntl(file, fcntl.F_SETLEASE, fcntl.F_WRLCK)
        player = self.player(metadata={"title": "1", "art": hung.as_uri()})
        self.start_bridge()
        self.wait_for_line(title="1")
        player.play(status="Paused")
        self.wait_for_line(title="1", playing=False)
        player.play(metadata={"title": "2", "art": self.cover((9, 9, 9))}, status="Playing")
        self.wait_for_cover(title="2", patience=PATIENCE / 2)  # the process that hangs would end by itself

    def test_covers_are_fetched_from_public_addresses_and_only_when_allowed(self):
        if subprocess.run([*NETWORK, "ip", "link", "set", "lo", "up"], stderr=subprocess.DEVNULL).returncode:
            self.skipTest("programs cannot have a network of their own here")
        local, log = self.cover((9, 9, 9)), self.folder / "asked"
        self.cover((200, 9, 9), name="served")
        # No proxy either: it would know other ways.
        self.environment.update(http_proxy="http://10.1.2.3:8000")
        player = self.player(metadata={"title": "0", "art": local})
        self.start_bridge(within=[*NETWORK, *SERVER, str(self.folder / "cover served.png"), str(log)])
        here = self.wait_for_cover()["artwork"]
        public, private = "203.0.113.7:8000", "10.1.2.3:8000"

        def refused(address):
            player.play(metadata={"title": address, "art": address})
            self.wait_for_line(title=address, artworkId=0)
            player.play(metadata={"title": "back", "art": local})
            self.assertEqual(self.wait_for_cover(title="back")["artwork"], here)
        refused(f"http://{public}/picture")
        self.assertFalse(log.exists())
        self.command("network on")
        for address in [private, "127.0.0.1:8000", "localhost:8000", f"{public}/to/{private}",
                        f"{public}/to/127.0.0.1:8000", f"{public}/to/name@{public}", f"name:word@{public}"]:
            refused(f"http://{address}/picture")
        refused(f"http://{public}/missing")
        for title, address in ("direct", public), ("led on", f"{public}/to/{public}"):
            player.play(metadata={"title": title, "art": f"http://{address}/picture"})
            self.assertNotEqual(self.wait_for_cover(title=title)["artwork"], here)
            player.play(metadata={"title": "back", "art": local})
            self.wait_for_cover(title="back")
        asked = log.read_text().split()
        self.assertEqual(len(asked), 3 + 1 + 1 + 2)
        self.assertEqual({each.split("/")[0] for each in asked}, {public})
        self.command("network off")
        refused(f"http://{public}/picture")
        self.assertEqual(log.read_text().split(), asked)

    # Commands

    def test_commands_reach_the_player_that_is_shown(self):
        other = self.player("other", status="Paused")
        player = self.player(position=100)
        self.start_bridge()
        self.wait_for_line(playing=True)
        for command in ["", "nonsense", "cmd 3", "seek", "seek x", "seek 1 2", "seek nan", "seek inf", "x" * 100_000]:
            self.command(command)
        for command, call in [("cmd 4", ["Next"]), ("cmd 5", ["Previous"]), ("raise", ["Raise"]),
                              ("cmd 2", ["PlayPause"])]:
            self.command(command)
            self.assertEqual(player.next_call(), call)
        self.wait_for_line(playing=False)
        self.command("seek 93.25")
        self.assertEqual(player.next_call(), ["SetPosition", "/track/1", 93_250_000])
        # Not all players say so when they have gone there.
        self.wait_for_line(playing=False, elapsed=93.25)
        player.play(metadata={"title": "No id"}, position=0)
        self.wait_for_line(title="No id")
        self.command("seek 30.0")
        method, offset = player.next_call()
        self.assertEqual(method, "Seek")
        self.assertAlmostEqual(offset / 1e6, 30, delta=1)
        self.assertTrue(other.calls.empty())

    def test_commands_that_a_player_ignores_are_told_to_have_had_no_effect(self):
        player = self.player(position=10, status="Paused", deaf=True)
        self.start_bridge()
        state = self.wait_for_line(lambda line: "pid" in line and "desktopEntry" in line and line["elapsed"] == 10)
        for command in "cmd 2", "seek 90.0":
            self.command(command)
            player.next_call()
            self.assertEqual(self.wait_for_line(), state, command)

    # Players and readers that misbehave

    def test_a_player_that_hangs_holds_up_nothing(self):
        self.player("hung").hang()
        self.start_bridge()
        player = self.player("well", metadata={"title": "Well"})
        self.wait_for_line(title="Well")
        player.hang()
        third = self.player("third", metadata={"title": "Third"})
        self.wait_for_line(title="Third")
        third.kill()
        self.wait_for_line(title="Well")

    def test_a_flood_costs_little_and_its_end_is_heard(self):
        player = self.player(metadata={"title": "Dry"})
        self.start_bridge()
        self.wait_for_line(title="Dry")
        before = self.processor_time()
        lines = []
        player.tell(names=300)
        player.tell(flood=3000)
        player.tell(flood=50, size=1_000_000)
        self.wait_for_line(lambda line: lines.append(line) or line["title"] == "Flood 49")
        self.assertLess(self.processor_time() - before, 0.2)
        self.assertLess(len(lines), 20)

    def test_a_reader_that_pauses_gets_the_latest_state(self):
        player = self.player(metadata={"title": "0", "art": self.cover()})
        self.start_bridge(listen=False)
        # Noise does not get smaller: a line with this cover fills any pipe.
        output, held = self.bridge.stdout, bytearray(4)
        capacity = fcntl.fcntl(output, fcntl.F_GETPIPE_SZ)

        def is_full():
            fcntl.ioctl(output, termios.FIONREAD, held)
            return int.from_bytes(held, "little") > capacity / 2
        wait_until(is_full, "the bridge to wait for its reader")
        for number in range(1, 20):
            player.play(metadata={"title": str(number)})
            time.sleep(0.02)  # lines are held back for so long together that they would be written meanwhile
        self.command("cmd 4")
        self.assertEqual(player.next_call(), ["Next"], "nobody waits for the reader but the lines")
        self.listen()
        self.assertEqual(self.wait_for_cover()["title"], "0")
        self.assertEqual(self.wait_for_line()["title"], "19", "nothing of what was meanwhile")

    def test_a_bus_that_is_restarted_is_found_again(self):
        self.player()
        self.start_bridge()
        self.wait_for_line(title="Song")
        self.bus.kill()
        self.bus.wait()
        self.assertNotIn("title", self.wait_for_line(lambda line: line.get("title") != "Song"))
        (self.folder / "bus").unlink(missing_ok=True)
        self.start_bus()
        self.player("again", metadata={"title": "Again"})
        self.wait_for_line(title="Again")

    # Its own end

    def test_it_ends_with_its_input_and_its_reader(self):
        self.start_bridge()
        self.wait_for_line()
        self.bridge.stdin.close()
        self.assertEqual(self.bridge.wait(PATIENCE), 0)
        self.player()
        self.start_bridge(listen=False)
        self.bridge.stdout.close()
        self.assertEqual(self.bridge.wait(PATIENCE), 0)


if __name__ == "__main__":
    unittest.main()
