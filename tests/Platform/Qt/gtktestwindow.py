# SPDX-License-Identifier: GPL-3.0-or-later
# SPDX-FileCopyrightText: 2026 The Vantrope developers
# What the GTK helper programs of the shelf tests share: a window with one area to drag from or drop on,
# and the lines they print for the test.
import gi

gi.require_version("Gtk", "3.0")
gi.require_version("Gdk", "3.0")
from gi.repository import GLib, Gtk  # noqa: E402


def say(line):
    print(line, flush=True)


def make_window(title, x, y):
    """A 300x220 window at (x, y) and the event area that fills it."""
    window = Gtk.Window(title=title)
    window.set_default_size(300, 220)
    window.move(x, y)
    area = Gtk.EventBox()
    window.add(area)
    window.connect("destroy", Gtk.main_quit)
    return window, area


def run(window, area):
    """Shows the window, prints "ready X Y" (the area's centre in root coordinates) once it is placed,
    and runs GTK until the test ends the program."""
    window.show_all()

    def announce():
        _, x, y = area.get_window().get_origin()
        allocation = area.get_allocation()
        say("ready %d %d" % (x + allocation.width // 2, y + allocation.height // 2))
        return False

    GLib.timeout_add(500, announce)
    Gtk.main()
