#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# SPDX-FileCopyrightText: 2026 The Vantrope developers
# Runs a command on a virtual X display of its own (Xvfb) with a window manager (openbox) and a private
# D-Bus session bus, then tears all of it down. Usage: with-display.sh COMMAND [ARGS...]
set -uo pipefail

if [ -z "${VANTROPE_PRIVATE_BUS:-}" ]; then
    export VANTROPE_PRIVATE_BUS=1
    exec dbus-run-session -- "$0" "$@"
fi

work=$(mktemp -d)
cleanup() {
    [ -n "${wm_pid:-}" ] && kill "$wm_pid" 2>/dev/null
    [ -n "${xvfb_pid:-}" ] && kill "$xvfb_pid" 2>/dev/null
    wait 2>/dev/null
    rm -rf "$work"
}
trap cleanup EXIT

Xvfb -displayfd 3 -screen 0 1920x1080x24 -nolisten tcp -noreset 3>"$work/display" 2>"$work/xvfb.log" &
xvfb_pid=$!
for _ in $(seq 100); do
    [ -s "$work/display" ] && break
    sleep 0.05
done
if [ ! -s "$work/display" ]; then
    echo "with-display.sh: Xvfb did not start" >&2
    cat "$work/xvfb.log" >&2
    exit 1
fi
export DISPLAY=":$(head -n1 "$work/display")"
export XDG_SESSION_TYPE=x11 QT_QPA_PLATFORM=xcb
unset WAYLAND_DISPLAY

openbox --sm-disable >"$work/openbox.log" 2>&1 &
wm_pid=$!
for _ in $(seq 100); do
    xprop -root _NET_SUPPORTING_WM_CHECK 2>/dev/null | grep -q 'window id' && break
    sleep 0.05
done

"$@"
