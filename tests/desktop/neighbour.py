"""Another program's window, as large as it may be, of the wallpaper's colour. It writes down what reaches it: clicks, keys,
files that are dropped on it, the focus. Files can be dragged out of it: neighbour.py [FILE]. The key f makes it fill
the screen, or not any more."""

import sys
from pathlib import Path

import gi

gi.require_version("Gtk", "3.0")
gi.require_version("Gdk", "3.0")
from gi.repository import Gdk, GLib, Gtk  # noqa: E402

from picture import WALLPAPER  # noqa: E402


def say(line):
    print(line, flush=True)


def key_pressed(_, event):
    name = Gdk.keyval_name(event.keyval)
    say(f"key {name}")
    if name == "f":
        filled = window.get_window().get_state() & Gdk.WindowState.FULLSCREEN
        window.unfullscreen() if filled else window.fullscreen()


GLib.set_prgname("neighbour")
window = Gtk.Window()
window.set_decorated(False)
window.maximize()
style = Gtk.CssProvider()
style.load_from_data(b"window { background: rgb(%d, %d, %d); }" % WALLPAPER)
window.get_style_context().add_provider(style, Gtk.STYLE_PROVIDER_PRIORITY_APPLICATION)
window.add_events(Gdk.EventMask.BUTTON_RELEASE_MASK)
window.connect("button-release-event", lambda _, event: say(f"click {event.x:.0f} {event.y:.0f}"))
window.connect("key-press-event", key_pressed)
window.connect("focus-in-event", lambda *_: say("focus in"))
window.connect("focus-out-event", lambda *_: say("focus out"))
window.drag_dest_set(Gtk.DestDefaults.ALL, [], Gdk.DragAction.COPY)
window.drag_dest_add_uri_targets()
window.connect("drag-data-received", lambda _, __, ___, ____, data, *_____: say(" ".join(data.get_uris())))
window.connect("drag-motion", lambda *_: say("entered"))
if len(sys.argv) > 1:
    window.drag_source_set(Gdk.ModifierType.BUTTON1_MASK, [], Gdk.DragAction.COPY)
    window.drag_source_add_uri_targets()
    window.connect("drag-data-get", lambda _, __, data, *___: data.set_uris([Path(sys.argv[1]).as_uri()]))
window.connect("map-event", lambda *_: say("ready"))
window.show_all()
Gtk.main()
