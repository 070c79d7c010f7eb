#!/usr/bin/env bash
# Installs what the tests need, builds, and runs every test: once plainly,
# once under AddressSanitizer and UndefinedBehaviorSanitizer, then the
# end-to-end tests on a real kernel in qemu.
set -euo pipefail
cd "$(dirname "$0")/.."

bash scripts/install-deps.sh
jobs=$(nproc)

cmake -S . -B build-test -DCMAKE_BUILD_TYPE=RelWithDebInfo
cmake --build build-test -j"$jobs"
ctest --test-dir build-test --output-on-failure -j"$jobs" -LE e2e

cmake -S . -B build-sanitize -DCMAKE_BUILD_TYPE=Debug -DSCRIBORA_SANITIZE=ON -DSCRIBORA_BENCHMARKS=OFF
cmake --build build-sanitize -j"$jobs"
ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=print_stacktrace=1 \
    ctest --test-dir build-sanitize --output-on-failure -j"$jobs" -LE e2e

ctest --test-dir build-test --output-on-failure -L e2e
