#!/usr/bin/env bash
# Installs what building needs, builds the driver and its Debian package, and prints the
# package's path. Root is needed only to install it: apt install ./build-package/package/scribora_*.deb
set -euo pipefail
cd "$(dirname "$0")/.."

bash scripts/install-deps.sh
cmake -S . -B build-package -DCMAKE_BUILD_TYPE=Release -DBUILD_TESTING=OFF -DSCRIBORA_BENCHMARKS=OFF
cmake --build build-package -j"$(nproc)"
(cd build-package && cpack -G DEB)
ls "$PWD"/build-package/package/scribora_*.deb
