#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# SPDX-FileCopyrightText: 2026 The Vantrope developers
# Installs the Debian packages Vantrope needs that are missing. Usage: scripts/deps.sh [build|test|bench|node]...
set -euo pipefail

build_packages=(
    cmake g++ make pkg-config
    qt6-base-dev qt6-base-dev-tools libgl-dev
    libx11-dev libxi-dev libxfixes-dev libx11-xcb-dev libxcb1-dev
    qt6-qpa-plugins libqt6svg6
    libminizip-dev zlib1g-dev
    libglib2.0-dev qt6-pdf-dev
    qtkeychain-qt6-dev
    libvips-dev libexiv2-dev libtesseract-dev
)
test_packages=(xvfb xauth openbox xdotool x11-utils dbus-daemon dbus-x11 libglib2.0-bin python3-gi gir1.2-gtk-3.0 python3-xlib
    chromium firefox-esr pcmanfm thunar desktop-file-utils unzip gsettings-desktop-schemas python3 python3-dbus
    tesseract-ocr-eng exiv2 poppler-utils file fonts-dejavu-core qt6-image-formats-plugins
    python3-botocore gnome-keyring libsecret-tools)
# The archive benchmark times Info-ZIP's zip beside ours; the image benchmark ImageMagick's mogrify and the
# tesseract program beside our resize and text recognition; the upload benchmark the AWS command line.
bench_packages=(zip imagemagick tesseract-ocr awscli)
# Only where no Node.js is installed: the local S3 server of the upload tests runs on it.
node_packages=(nodejs npm)

wanted=("${build_packages[@]}")
for group in "$@"; do
    case "$group" in
        build) ;;
        bench) wanted+=("${bench_packages[@]}") ;;
        node) wanted+=("${node_packages[@]}") ;;
        test) wanted+=("${test_packages[@]}") ;;
        *) echo "deps.sh: unknown group '$group'" >&2; exit 2 ;;
    esac
done

missing=()
for package in "${wanted[@]}"; do
    status=$(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null || true)
    [ "$status" = "installed" ] || missing+=("$package")
done
[ ${#missing[@]} -eq 0 ] && exit 0

echo "Installing missing packages: ${missing[*]}" >&2
sudo=()
if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null || { echo "deps.sh: need root or sudo to install ${missing[*]}" >&2; exit 1; }
    sudo=(sudo)
fi
export DEBIAN_FRONTEND=noninteractive
"${sudo[@]}" apt-get update -qq
"${sudo[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}" >&2
