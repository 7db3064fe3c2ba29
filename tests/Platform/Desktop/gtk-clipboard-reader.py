#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
# SPDX-FileCopyrightText: 2026 The Vantrope developers
# Reads the clipboard as a GTK program does and prints what it finds, each value as hex:
#   targets T1 T2 ...
#   data TARGET HEX      (for text/uri-list and x-special/gnome-copied-files)
#   uris HEX             (GTK's own reading of the URIs, joined by newlines)
#   text HEX             (GTK's own reading of the text)
import sys

import gi

gi.require_version("Gdk", "3.0")
gi.require_version("Gtk", "3.0")
from gi.repository import Gdk, Gtk  # noqa: E402

clipboard = Gtk.Clipboard.get(Gdk.SELECTION_CLIPBOARD)
ok, targets = clipboard.wait_for_targets()
names = sorted(str(target) for target in targets) if ok else []
out = sys.stdout.buffer
out.write(("targets " + " ".join(names) + "\n").encode())
for target in ("text/uri-list", "x-special/gnome-copied-files"):
    data = clipboard.wait_for_contents(Gdk.Atom.intern(target, False))
    raw = data.get_data() if data is not None else b""
    out.write(b"data " + target.encode() + b" " + raw.hex().encode() + b"\n")
uris = clipboard.wait_for_uris() or []
out.write(b"uris " + "\n".join(uris).encode().hex().encode() + b"\n")
text = clipboard.wait_for_text() or ""
out.write(b"text " + text.encode().hex().encode() + b"\n")
out.flush()
