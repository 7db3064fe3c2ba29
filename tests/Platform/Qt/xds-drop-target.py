#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
# SPDX-FileCopyrightText: 2026 The Vantrope developers
# A drop target that takes a file through X Direct Save, as file managers do: it reads the suggested
# name from the source window's XdndDirectSave0 property, writes the URI of a file in its folder there
# and asks the source to save it. It prints "ready X Y" (its window's centre in root coordinates), then
# for a drop "saved NAME ANSWER" with the source's answer ("S", "E" or "F") and "end".
#   FOLDER   where it asks for the file
#   nul      (optional) ends the URI with a NUL byte, as pcmanfm does
import os
import sys
import urllib.parse

from Xlib import X, Xatom, display
from Xlib.protocol import event


def say(line):
    print(line, flush=True)


def main(folder, nul):
    d = display.Display()
    root = d.screen().root
    atom = {name: d.intern_atom(name) for name in (
        "XdndAware", "XdndEnter", "XdndPosition", "XdndStatus", "XdndDrop", "XdndFinished", "XdndLeave",
        "XdndSelection", "XdndActionCopy", "XdndDirectSave0", "text/plain", "XDS_ANSWER")}
    window = root.create_window(
        1400, 60, 300, 220, 0, d.screen().root_depth, X.InputOutput, X.CopyFromParent,
        background_pixel=d.screen().white_pixel, event_mask=X.StructureNotifyMask | X.PropertyChangeMask)
    window.set_wm_name("XDS drop target")
    window.set_wm_normal_hints(flags=1 | 2, x=1400, y=60)
    window.change_property(atom["XdndAware"], Xatom.ATOM, 32, [5])
    window.map()
    d.flush()
    source = None
    while True:
        e = d.next_event()
        if e.type == X.MapNotify:
            origin = window.translate_coords(root, 0, 0)
            say("ready %d %d" % (-origin.x + 150, -origin.y + 110))
        elif e.type != X.ClientMessage:
            continue
        elif e.client_type == atom["XdndEnter"]:
            source = d.create_resource_object("window", e.data[1][0])
        elif e.client_type == atom["XdndPosition"] and source:
            reply = event.ClientMessage(window=source, client_type=atom["XdndStatus"],
                                        data=(32, [window.id, 1, 0, 0, atom["XdndActionCopy"]]))
            source.send_event(reply)
            d.flush()
        elif e.client_type == atom["XdndDrop"] and source:
            time = e.data[1][2]
            name = source.get_full_property(atom["XdndDirectSave0"], X.AnyPropertyType)
            name = name.value.decode() if name else ""
            uri = "file://" + urllib.parse.quote(os.path.join(folder, name))
            source.change_property(atom["XdndDirectSave0"], atom["text/plain"], 8,
                                   uri.encode() + (b"\0" if nul else b""))
            window.convert_selection(atom["XdndSelection"], atom["XdndDirectSave0"], atom["XDS_ANSWER"], time)
            d.flush()
            answer = ""
            while True:
                n = d.next_event()
                if n.type == X.SelectionNotify:
                    if n.property != X.NONE:
                        value = window.get_full_property(atom["XDS_ANSWER"], X.AnyPropertyType)
                        answer = value.value.decode() if value else ""
                    break
            say("saved %s %s" % (urllib.parse.quote(name), answer))
            say("end")
            finished = event.ClientMessage(window=source, client_type=atom["XdndFinished"],
                                           data=(32, [window.id, 1 if answer == "S" else 0,
                                                      atom["XdndActionCopy"], 0, 0]))
            source.send_event(finished)
            d.flush()
            source = None


if __name__ == "__main__":
    main(sys.argv[1], sys.argv[2:] == ["nul"])
