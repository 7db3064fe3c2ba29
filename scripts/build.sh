#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# SPDX-FileCopyrightText: 2026 The Vantrope developers
# Configures and builds Vantrope in build/ with two jobs. Extra arguments go to the CMake configure step.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build_dir=${VANTROPE_BUILD_DIR:-$root/build}
cmake -S "$root" -B "$build_dir" "$@" >&2
cmake --build "$build_dir" -j2 >&2
