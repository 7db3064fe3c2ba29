#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
# SPDX-FileCopyrightText: 2026 The Vantrope developers
# A stand-in for the KDE Connect daemon on the session bus: three devices (one paired and reachable, one
# paired but away, one reachable but not paired), their names, and a share plugin that appends
# "DEVICE URL" lines to the file named by the first argument. Prints "ready" once it owns its name.
import sys

import dbus
import dbus.service
from dbus.mainloop.glib import DBusGMainLoop
from gi.repository import GLib

DBusGMainLoop(set_as_default=True)
RECORD = sys.argv[1]
# id: (name, reachable, paired)
DEVICES = {
    "phone1": ("Test Phone", True, True),
    "tablet2": ("Test Tablet", False, True),
    "stranger3": ("Not Paired", True, False),
}


class Daemon(dbus.service.Object):
    @dbus.service.method("org.kde.kdeconnect.daemon", in_signature="bb", out_signature="as")
    def devices(self, only_reachable, only_paired):
        return [
            device
            for device, (_, reachable, paired) in DEVICES.items()
            if (reachable or not only_reachable) and (paired or not only_paired)
        ]


class Device(dbus.service.Object):
    def __init__(self, bus, device, name):
        super().__init__(bus, "/modules/kdeconnect/devices/" + device)
        self.name = name

    @dbus.service.method(dbus.PROPERTIES_IFACE, in_signature="ss", out_signature="v")
    def Get(self, interface, prop):
        if interface == "org.kde.kdeconnect.device" and prop == "name":
            return dbus.String(self.name)
        raise dbus.exceptions.DBusException(
            "no property " + prop, name="org.freedesktop.DBus.Error.UnknownProperty"
        )


class Share(dbus.service.Object):
    def __init__(self, bus, device):
        super().__init__(bus, "/modules/kdeconnect/devices/" + device + "/share")
        self.device = device

    @dbus.service.method("org.kde.kdeconnect.device.share", in_signature="as", out_signature="")
    def shareUrls(self, urls):
        with open(RECORD, "a", encoding="utf-8") as record:
            for url in urls:
                record.write(self.device + " " + url + "\n")


bus = dbus.SessionBus()
objects = [Daemon(bus, "/modules/kdeconnect")]
for device, (name, _, _) in DEVICES.items():
    objects.append(Device(bus, device, name))
    objects.append(Share(bus, device))
bus_name = dbus.service.BusName("org.kde.kdeconnect", bus)
print("ready", flush=True)
GLib.MainLoop().run()
