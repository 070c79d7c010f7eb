#!/usr/bin/env bash
# Installs the Debian 12 packages that building, running and testing need.
set -euo pipefail

packages=(
    build-essential cmake pkg-config
    qtbase5-dev qtbase5-dev-tools
    libhidapi-dev libusb-1.0-0-dev libevdev-dev
    libgtest-dev libbenchmark-dev
    clang libclang-rt-14-dev  # libFuzzer
    xvfb x11-utils
    fonts-dejavu-core  # the pictures drawn at build time carry text
    libinput-tools  # the e2e pen test runs libinput debug-events in the guest
)

as_root=()
[ "$(id -u)" -eq 0 ] || as_root=(sudo)

missing=()
for package in "${packages[@]}"; do
    dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q "install ok installed" || missing+=("$package")
done
[ "${#missing[@]}" -eq 0 ] && exit 0

"${as_root[@]}" apt-get update
DEBIAN_FRONTEND=noninteractive "${as_root[@]}" apt-get install -y --no-install-recommends "${missing[@]}"
