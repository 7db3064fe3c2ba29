#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
# SPDX-FileCopyrightText: 2026 The Vantrope developers
# An XDND drag source that, like Chromium and some other toolkits, only considers the top-level windows
# that were mapped when its drag began: a window mapped later is invisible to it, a window that moves
# is found where it is now. It drags one file.
#
# It prints "ready X Y" (its window's centre in root coordinates) once mapped, "dragging N" when the drag
# starts with N top-level windows known, and at the release "dropped" (the target took the drop and
# finished) or "no target".
#   FILE   the file it drags
import os
import sys
import urllib.parse

from Xlib import X, display, error
from Xlib.protocol import event

XDND_VERSION = 5
DRAG_THRESHOLD = 8


def say(line):
    print(line, flush=True)


class Source:
    def __init__(self, path):
        self.d = display.Display()
        self.root = self.d.screen().root
        self.uri = ("file://" + urllib.parse.quote(os.path.abspath(path))).encode() + b"\r\n"
        self.atoms = {
            name: self.d.intern_atom(name)
            for name in (
                "XdndAware", "XdndEnter", "XdndPosition", "XdndStatus", "XdndLeave", "XdndDrop",
                "XdndFinished", "XdndSelection", "XdndActionCopy", "text/uri-list", "WM_STATE",
            )
        }
        self.window = self.root.create_window(
            100, 100, 300, 220, 0, self.d.screen().root_depth, X.InputOutput, X.CopyFromParent,
            background_pixel=self.d.screen().white_pixel,
            event_mask=X.ButtonPressMask | X.ButtonReleaseMask | X.PointerMotionMask | X.StructureNotifyMask,
        )
        self.window.set_wm_name("XDND snapshot source")
        self.window.set_wm_normal_hints(flags=1 | 2, x=100, y=100)  # USPosition | USSize
        self.known = []
        self.target = None
        self.accepted = False
        self.pressed_at = None
        self.dragging = False
        self.time = X.CurrentTime

    def run(self):
        self.window.map()
        self.d.flush()
        while True:
            e = self.d.next_event()
            if e.type == X.MapNotify and e.window == self.window:
                self.announce()
            elif e.type == X.ButtonPress and e.detail == 1:
                self.pressed_at = (e.root_x, e.root_y)
            elif e.type == X.MotionNotify and self.pressed_at:
                self.time = e.time
                if not self.dragging:
                    dx, dy = e.root_x - self.pressed_at[0], e.root_y - self.pressed_at[1]
                    if abs(dx) + abs(dy) >= DRAG_THRESHOLD:
                        self.begin(e.time)
                if self.dragging:
                    self.move_to(e.root_x, e.root_y, e.time)
            elif e.type == X.ButtonRelease and e.detail == 1:
                if self.dragging:
                    self.drop(e.time)
                self.pressed_at = None
            elif e.type == X.ClientMessage and e.client_type == self.atoms["XdndStatus"]:
                self.accepted = bool(e.data[1][1] & 1)
            elif e.type == X.SelectionRequest:
                self.answer(e)

    def announce(self):
        geometry = self.window.get_geometry()
        origin = self.window.translate_coords(self.root, 0, 0)
        say("ready %d %d" % (-origin.x + geometry.width // 2, -origin.y + geometry.height // 2))

    def begin(self, time):
        self.dragging = True
        self.window.grab_pointer(
            False, X.ButtonReleaseMask | X.PointerMotionMask, X.GrabModeAsync, X.GrabModeAsync, X.NONE,
            X.NONE, time,
        )
        self.window.set_selection_owner(self.atoms["XdndSelection"], time)
        # The snapshot: top-level windows mapped now, bottom to top.
        self.known = []
        for child in self.root.query_tree().children:
            try:
                if child.get_attributes().map_state == X.IsViewable and child.id != self.window.id:
                    self.known.append(child)
            except error.XError:
                pass
        say("dragging %d" % len(self.known))

    def aware_window(self, window, depth=0):
        """The window itself or the first descendant that says it takes drops."""
        try:
            if window.get_full_property(self.atoms["XdndAware"], X.AnyPropertyType):
                return window
            if depth < 3:
                for child in window.query_tree().children:
                    found = self.aware_window(child, depth + 1)
                    if found:
                        return found
        except error.XError:
            pass
        return None

    def window_at(self, x, y):
        for window in reversed(self.known):
            try:
                if window.get_attributes().map_state != X.IsViewable:
                    continue
                g = window.get_geometry()
            except error.XError:
                continue
            if g.x <= x < g.x + g.width and g.y <= y < g.y + g.height:
                # The topmost known window under the pointer decides, whether it takes drops or not.
                return self.aware_window(window)
        return None

    def send(self, target, name, data):
        message = event.ClientMessage(window=target, client_type=self.atoms[name], data=(32, data))
        target.send_event(message, event_mask=0)

    def move_to(self, x, y, time):
        target = self.window_at(x, y)
        if (target.id if target else None) != (self.target.id if self.target else None):
            if self.target:
                self.send(self.target, "XdndLeave", [self.window.id, 0, 0, 0, 0])
            self.target = target
            self.accepted = False
            if target:
                self.send(target, "XdndEnter",
                          [self.window.id, XDND_VERSION << 24, self.atoms["text/uri-list"], 0, 0])
        if self.target:
            self.send(self.target, "XdndPosition",
                      [self.window.id, 0, (x << 16) | y, time, self.atoms["XdndActionCopy"]])
        self.d.flush()

    def drop(self, time):
        self.d.ungrab_pointer(time)
        self.dragging = False
        if not self.target or not self.accepted:
            if self.target:
                self.send(self.target, "XdndLeave", [self.window.id, 0, 0, 0, 0])
            self.d.flush()
            say("no target")
            return
        self.send(self.target, "XdndDrop", [self.window.id, 0, time, 0, 0])
        self.d.flush()
        while True:
            e = self.d.next_event()
            if e.type == X.SelectionRequest:
                self.answer(e)
            elif e.type == X.ClientMessage and e.client_type == self.atoms["XdndFinished"]:
                say("dropped")
                return

    def answer(self, request):
        prop = request.property or request.target
        if request.target == self.atoms["text/uri-list"]:
            request.requestor.change_property(prop, request.target, 8, self.uri)
        else:
            prop = X.NONE
        notify = event.SelectionNotify(time=request.time, requestor=request.requestor,
                                       selection=request.selection, target=request.target, property=prop)
        request.requestor.send_event(notify, event_mask=0)
        self.d.flush()


if __name__ == "__main__":
    Source(sys.argv[1]).run()
