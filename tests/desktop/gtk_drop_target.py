"""A window of GTK that writes down the files that are dropped on it: gtk_drop_target.py X Y WIDTH HEIGHT"""

import sys

import gi

gi.require_version("Gtk", "3.0")
gi.require_version("Gdk", "3.0")
from gi.repository import Gdk, Gtk  # noqa: E402


def say(line):
    print(line, flush=True)


x, y, width, height = map(int, sys.argv[1:])
window = Gtk.Window()
window.drag_dest_set(Gtk.DestDefaults.ALL, [], Gdk.DragAction.COPY)
window.drag_dest_add_uri_targets()
window.connect("drag-data-received", lambda _, __, ___, ____, data, *_____: say(" ".join(data.get_uris())))
window.connect("drag-motion", lambda *_: say("entered"))
window.connect("drag-leave", lambda *_: say("left"))
window.connect("map-event", lambda *_: say("ready"))
window.move(x, y)
window.resize(width, height)
window.show_all()
Gtk.main()
