#!/usr/bin/env bash
# Installs what the driver needs, builds it, lays down the configuration
# folder and starts the driver. Run as root: the driver needs the USB
# device nodes, /dev/uinput and its configuration folder.
set -euo pipefail
cd "$(dirname "$0")/.."

bash scripts/install-deps.sh
cmake -S . -B build-release -DCMAKE_BUILD_TYPE=Release -DBUILD_TESTING=OFF -DSCRIBORA_BENCHMARKS=OFF
cmake --build build-release -j"$(nproc)"
cmake --install build-release
exec /usr/lib/scribora/scribora "$@"
