#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# SPDX-FileCopyrightText: 2026 The Vantrope developers
# Runs a command with a real Secret Service of its own: a private session bus with an unlocked GNOME
# Keyring in a throw-away home. Usage: with-keyring.sh COMMAND [ARGS...]
set -uo pipefail

if [ -z "${VANTROPE_KEYRING_BUS:-}" ]; then
    export VANTROPE_KEYRING_BUS=1
    exec dbus-run-session -- "$0" "$@"
fi

home=$(mktemp -d)
trap 'kill "${keyring_pid:-}" 2>/dev/null; rm -rf "$home"' EXIT
export XDG_DATA_HOME="$home/data" XDG_RUNTIME_DIR="$home/run" XDG_CONFIG_HOME="$home/config"
mkdir -p "$XDG_DATA_HOME" "$XDG_RUNTIME_DIR" "$XDG_CONFIG_HOME"
chmod 700 "$XDG_RUNTIME_DIR"
# The password unlocks (and first creates) the login keyring; it guards nothing but this test's secrets.
keyring_env=$(printf 'vantrope-test' | gnome-keyring-daemon --replace --unlock --components=secrets --daemonize)
eval "$(printf '%s\n' "$keyring_env" | sed 's/^/export /')"
keyring_pid=${GNOME_KEYRING_PID:-}
"$@"
