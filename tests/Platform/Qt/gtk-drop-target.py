#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
# SPDX-FileCopyrightText: 2026 The Vantrope developers
# A GTK 3 window that takes file drops as GTK programs do (it asks for text/uri-list only), for the tests
# that drag a shelf's items out. It prints "ready X Y" (its centre in root coordinates) once placed and,
# for a drop, "dropped ACTION", "type TYPE BYTES-AS-PERCENT-ENCODING" and "end".
#   --action copy|move   the action it takes
#   --type TYPE          the one type it asks for instead, as a text field asks for text/plain
#   --unix-time          asks for the data with the Unix time in seconds as the X time, as some file
#                        managers do
import argparse
import sys
import time as clock
import urllib.parse

import gi

gi.require_version("Gtk", "3.0")
gi.require_version("Gdk", "3.0")
from gi.repository import Gdk, Gtk  # noqa: E402
from gtktestwindow import make_window, run, say  # noqa: E402


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--action", default="copy", choices=["copy", "move"])
    parser.add_argument("--unix-time", action="store_true")
    parser.add_argument("--type", default="text/uri-list")
    options = parser.parse_args()
    action = Gdk.DragAction.MOVE if options.action == "move" else Gdk.DragAction.COPY
    wanted = Gdk.Atom.intern(options.type, False)

    window, area = make_window("GTK drop target", 1400, 60)
    # No default handling: the motion and drop answers below are the whole protocol.
    area.drag_dest_set(0, [], action)
    area.drag_dest_set_target_list(Gtk.TargetList.new([Gtk.TargetEntry.new(options.type, 0, 0)]))

    def on_motion(_widget, context, _x, _y, time):
        Gdk.drag_status(context, action, time)
        return True

    def on_drop(widget, context, _x, _y, time):
        if options.unix_time:
            time = int(clock.time()) & 0xFFFFFFFF
        widget.drag_get_data(context, wanted, time)
        return True

    def on_received(_widget, context, _x, _y, selection, _info, time):
        say("dropped " + options.action)
        data = selection.get_data() or b""
        say("type %s %s" % (options.type, urllib.parse.quote(data, safe="")))
        say("end")
        Gtk.drag_finish(context, bool(data), action == Gdk.DragAction.MOVE, time)

    area.connect("drag-motion", on_motion)
    area.connect("drag-drop", on_drop)
    area.connect("drag-data-received", on_received)
    run(window, area)


if __name__ == "__main__":
    sys.exit(main())
