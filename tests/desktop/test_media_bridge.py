"""The media bridge as the overlay runs it: players on a bus of their own, lines out, commands in."""

import base64
import http.server
import json
import os
import queue
import signal
import subprocess
import tempfile
import threading
import time
import unittest
from pathlib import Path

from desktop import BUILD, PATIENCE, wait_until
from media_player import MediaPlayer

SCRIPT = "\n".join(["use DynaLoader;",
                    "my $l = DynaLoader::dl_load_file($ARGV[0], 0) or die DynaLoader::dl_error();",
                    'my $s = DynaLoader::dl_find_symbol($l, "tarnwick_stream") or die "symbol";',
                    'DynaLoader::dl_install_xsub("main::tarnwick_stream", $s);',
                    "tarnwick_stream();"])
BRIDGE = ["/usr/bin/perl", "-e", SCRIPT, str(BUILD / "lib/Tarnwick/MediaBridge.so")]
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

    def start_bridge(self, listen=True):
        self.bridge = subprocess.Popen(BRIDGE, stdin=subprocess.PIPE, stdout=subprocess.PIPE, env=self.environment)
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

    def wait_for_line(self, condition=lambda line: True, **values):
        """The next line that satisfies the condition and has these values; the others are dropped."""
        end, seen = time.monotonic() + PATIENCE, []
        while time.monotonic() < end:
            try:
                line = self.lines.get(timeout=0.2)
            except queue.Empty:
                continue
            if condition(line) and all(line.get(key) == value for key, value in values.items()):
                return line
            seen.append({key: value for key, value in line.items() if key != "artwork"})
        raise AssertionError(f"no line with {values}; there were {seen[-5:]}")

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
                          ("title", "artist", "album", "duration", "playing", "artworkId", "pid", "desktopEntry")},
                         {"title": "Song", "artist": "Ann, Bob", "album": "Record", "duration": 200, "playing": True,
                          "artworkId": 0, "pid": player.pid, "desktopEntry": "test-player"})

    def test_metadata_of_every_shape(self):
        self.start_bridge()
        self.assertNotIn("title", self.wait_for_line())
        player = self.player()
        cases = [({"title": "x" * 10_000}, "x" * 2000, 0),
                 ({"title": "é" * 5000}, "é" * 1000, 0),
                 ({"title": "A", "length_unsigned": 7}, "A", 7),
                 ({"title": "B", "length_text": "long"}, "B", 0),
                 ({"title": "C", "length": -5}, "C", 0),
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
        self.wait_for_line(title="1", playing=True)
        second = self.player("second", metadata={"title": "2"}, status="Paused")
        second.play(status="Playing")
        self.wait_for_line(title="2", playing=True)
        second.play(status="Paused")
        self.wait_for_line(title="1", playing=True)
        first.play(status="Paused")
        self.wait_for_line(title="1", playing=False)
        second.play(status="Playing")
        self.wait_for_line(title="2", playing=True)
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

    def test_position_follows_pauses_seeks_and_tracks(self):
        player = self.player(position=12)
        self.start_bridge()
        self.wait_for_line(title="Song")
        player.tell(seeked=90)
        self.assertAlmostEqual(self.wait_for_line(lambda line: line["elapsed"] > 60)["elapsed"], 90, delta=1)
        player.play(status="Paused")
        self.assertLess(self.wait_for_line(playing=False)["elapsed"], 90 + PATIENCE)
        player.play(metadata={"title": "Next", "trackid": "/track/2"}, position=0, status="Playing")
        self.assertLess(self.wait_for_line(title="Next", playing=True)["elapsed"], 1)

    # Covers

    def cover(self, colour=b"\x01", size=1000):
        path = self.folder / f"cover {colour.hex()}.png"
        path.write_bytes(colour * size)
        return path.as_uri(), base64.b64encode(colour * size).decode()

    def test_a_cover_is_sent_once_and_again_when_it_differs(self):
        first, first_bytes = self.cover(b"\x01")
        second, second_bytes = self.cover(b"\x02", 3_000_000)
        player = self.player(metadata={"title": "1", "art": first})
        self.start_bridge()
        line = self.wait_for_line(lambda line: "artwork" in line)
        self.assertEqual(line["artwork"], first_bytes)
        player.play(status="Paused")
        paused = self.wait_for_line(playing=False)
        self.assertEqual((paused["artworkId"], "artwork" in paused), (line["artworkId"], False))
        player.play(metadata={"title": "2", "art": second}, status="Playing")
        other = self.wait_for_line(lambda line: "artwork" in line)
        self.assertEqual(other["artwork"], second_bytes)
        self.assertNotIn(other["artworkId"], (0, line["artworkId"]))
        player.play(metadata={"title": "3"})
        self.wait_for_line(title="3", artworkId=0)
        player.play(metadata={"title": "4", "art": second})
        self.assertEqual(self.wait_for_line(lambda line: "artwork" in line)["artwork"], second_bytes)
        # A new picture at the old address, with a new track.
        self.cover(b"\x01", 500)
        player.play(metadata={"title": "5", "art": first})
        self.assertEqual(len(self.wait_for_line(lambda line: "artwork" in line)["artwork"]), len(first_bytes) // 2)

    def test_covers_of_every_kind_and_those_that_cannot_be_had(self):
        huge = self.folder / "huge"
        with open(huge, "wb") as file:
            file.truncate((8 << 20) + 1)
        fifo = self.folder / "fifo"
        os.mkfifo(fifo)
        good, good_bytes = self.cover()
        player = self.player(metadata={"title": "0", "art": good})
        self.start_bridge()
        self.wait_for_line(lambda line: "artwork" in line)
        urls = [huge.as_uri(), fifo.as_uri(), "file:///dev/zero", "file:///nonexistent", "file://" + str(self.folder),
                "data:image/png", "data:;base64,", "ftp://localhost/x", "http://127.0.0.1:1/x", "no address", "file:"]
        for url, expected in [("data:image/png;base64,aGVsbG8=", "aGVsbG8="), ("data:,a%20b", "YSBi")]:
            player.play(metadata={"title": "In the address itself", "art": url})
            self.assertEqual(self.wait_for_line(lambda line: "artwork" in line)["artwork"], expected)
        for number, url in enumerate(urls, 1):
            player.play(metadata={"title": str(number), "art": url})
            self.wait_for_line(title=str(number), artworkId=0)
            player.play(metadata={"title": f"{number} good", "art": good})
            self.assertEqual(self.wait_for_line(lambda line: "artwork" in line)["artwork"], good_bytes, url)

    def test_covers_from_the_web_never_hold_up_the_stream(self):
        release = threading.Event()
        self.addCleanup(release.set)

        class Server(http.server.BaseHTTPRequestHandler):
            def do_GET(self):
                if self.path == "/slow":
                    release.wait(PATIENCE)
                if self.path == "/gone":
                    self.send_error(404)
                    return
                self.send_response(200)
                self.end_headers()
                self.wfile.write(b"cover")

            def log_message(self, *_):
                pass
        server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Server)
        server.handle_error = lambda *_: None  # clients may go before they are answered
        threading.Thread(target=server.serve_forever, daemon=True).start()
        self.addCleanup(server.server_close)
        self.addCleanup(server.shutdown)
        base = f"http://127.0.0.1:{server.server_port}"
        self.environment.update(no_proxy="*", NO_PROXY="*")
        player = self.player(metadata={"title": "1", "art": base + "/slow"})
        self.start_bridge()
        self.wait_for_line(title="1")
        player.play(status="Paused")
        self.wait_for_line(title="1", playing=False)
        player.play(metadata={"title": "2", "art": base + "/cover"}, status="Playing")
        # The slow one is given up for it.
        self.assertEqual(self.wait_for_line(lambda line: "artwork" in line, title="2")["artwork"], "Y292ZXI=")
        player.play(metadata={"title": "3", "art": base + "/gone"})
        self.wait_for_line(title="3", artworkId=0)

    # Commands

    def test_commands_reach_the_player_that_is_shown(self):
        other = self.player("other", status="Paused")
        player = self.player(position=100)
        self.start_bridge()
        self.wait_for_line(playing=True)
        for command in ["", "nonsense", "cmd 3", "seek", "seek x", "seek 1 2", "seek nan", "seek inf", "x" * 100_000]:
            self.command(command)
        for command, call in [("cmd 4", ["Next"]), ("cmd 5", ["Previous"]),
                              ("seek 93.25", ["SetPosition", "/track/1", 93_250_000])]:
            self.command(command)
            self.assertEqual(player.next_call(), call)
        self.wait_for_line(lambda line: 93 <= line.get("elapsed", 0) < 100)
        self.command("cmd 2")
        self.assertEqual(player.next_call(), ["PlayPause"])
        self.wait_for_line(playing=False)
        player.play(metadata={"title": "No id"}, position=0)
        self.wait_for_line(title="No id")
        self.command("seek 30.0")
        method, offset = player.next_call()
        self.assertEqual(method, "Seek")
        self.assertAlmostEqual(offset / 1e6, 30, delta=1)
        self.assertTrue(other.calls.empty())

    # Players and readers that misbehave

    def test_a_player_that_hangs_holds_up_nothing(self):
        hung = self.player("hung")
        hung.hang()
        self.start_bridge()
        player = self.player("well", metadata={"title": "Well"})
        self.wait_for_line(title="Well")
        player.hang()
        self.command("cmd 2")
        # Nothing has become of it: whoever expected something else is told so.
        self.wait_for_line(title="Well", playing=True)
        third = self.player("third", metadata={"title": "Third"})
        self.wait_for_line(title="Third")
        third.kill()
        self.wait_for_line(title="Well")

    def test_a_flood_of_changes_becomes_few_lines(self):
        player = self.player()
        self.start_bridge()
        self.wait_for_line(title="Song")
        start = time.monotonic()
        player.tell(flood=5000)
        lines = 0

        def last(line):
            nonlocal lines
            lines += 1
            return line["title"] == "Flood 4999"
        self.wait_for_line(last)
        self.assertLess(lines, (time.monotonic() - start) * 25 + 5)

    def test_a_reader_that_pauses_gets_the_latest_state(self):
        cover, cover_bytes = self.cover(b"\x01", 2_000_000)
        player = self.player(metadata={"title": "0", "art": cover})
        self.start_bridge(listen=False)

        def bridge_obeys():
            self.command("cmd 4")
            return not player.calls.empty()
        for number in range(1, 200):
            player.play(metadata={"title": str(number), "art": cover})
            if number % 50 == 0:
                wait_until(bridge_obeys, "the bridge, with nobody reading, to pass a command on")
                player.next_call()
        self.listen()
        line = self.wait_for_line(lambda line: "artwork" in line)
        self.assertEqual(line["artwork"], cover_bytes)
        self.wait_for_line(title="199")

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

    def test_it_ends_with_its_input_its_reader_and_its_parent(self):
        self.start_bridge()
        self.wait_for_line()
        self.bridge.stdin.close()
        self.assertEqual(self.bridge.wait(PATIENCE), 0)

        self.player()
        self.start_bridge(listen=False)
        self.bridge.stdout.close()
        self.assertEqual(self.bridge.wait(PATIENCE), 0)

        # A parent that is killed, with our input held open by another.
        read_end, write_end = os.pipe()
        parent = subprocess.Popen(["/usr/bin/perl", "-e", 'if (my $pid = fork) { $| = 1; print "$pid\\n"; sleep 1000 } '
                                   "else { open STDERR, '>', '/dev/null'; exec @ARGV }"] + BRIDGE,
                                  stdin=read_end, stdout=subprocess.PIPE, env=self.environment)
        self.addCleanup(self.end, parent)
        child = int(parent.stdout.readline())
        parent.stdout.readline()  # the bridge's first line
        parent.send_signal(signal.SIGKILL)
        parent.wait()

        def ended():
            try:
                return Path(f"/proc/{child}/stat").read_text().rsplit(")", 1)[1].split()[0] == "Z"
            except FileNotFoundError:
                return True
        wait_until(ended, "the bridge to end with its parent")
        os.close(read_end)
        os.close(write_end)


if __name__ == "__main__":
    unittest.main()
