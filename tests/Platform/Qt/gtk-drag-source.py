#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
# SPDX-FileCopyrightText: 2026 The Vantrope developers
# A GTK 3 window that starts one real drag when pressed and moved, for the tests that drop things on a
# shelf with X input: GTK names its drag types differently from Qt (UTF8_STRING, text/plain;charset=utf-8,
# STRING...). It prints "ready X Y" (its centre in root coordinates) once placed, then "drag started" and
# "drag finished" around the drag.
#   --kind text|files   --file PATH (repeatable, for files)
import argparse
import sys

import gi

gi.require_version("Gtk", "3.0")
gi.require_version("Gdk", "3.0")
from gi.repository import Gdk, GLib, Gtk  # noqa: E402
from gtktestwindow import make_window, run, say  # noqa: E402

TEXT = "Meeting notes\nBring the slides and the budget"


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--kind", default="text")
    parser.add_argument("--file", action="append", default=[])
    options = parser.parse_args()

    window, area = make_window("GTK drag source", 40, 60)

    targets = Gtk.TargetList.new([])
    if options.kind == "files":
        targets.add_uri_targets(0)
    else:
        targets.add_text_targets(0)
    area.drag_source_set(Gdk.ModifierType.BUTTON1_MASK, [], Gdk.DragAction.COPY | Gdk.DragAction.MOVE)
    area.drag_source_set_target_list(targets)

    def on_data_get(_widget, _context, selection, _info, _time):
        if options.kind == "files":
            selection.set_uris([GLib.filename_to_uri(path, None) for path in options.file])
        else:
            selection.set_text(TEXT, -1)

    area.connect("drag-data-get", on_data_get)
    area.connect("drag-begin", lambda *_: say("drag started"))
    area.connect("drag-end", lambda *_: say("drag finished"))
    run(window, area)


if __name__ == "__main__":
    sys.exit(main())
