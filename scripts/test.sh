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

# The function-string parsers, the profile reader, the device file reader and
# the report dispatcher under libFuzzer for a bounded time.
cmake -S . -B build-fuzz -DCMAKE_BUILD_TYPE=RelWithDebInfo -DCMAKE_C_COMPILER=clang \
    -DCMAKE_CXX_COMPILER=clang++ -DSCRIBORA_FUZZ=ON -DBUILD_TESTING=OFF -DSCRIBORA_BENCHMARKS=OFF
cmake --build build-fuzz -j"$jobs" --target functionstring_fuzz profilexml_fuzz devicedoc_fuzz \
    dispatcher_fuzz
mkdir -p build-fuzz/corpus build-fuzz/corpus-profile build-fuzz/corpus-devicedoc \
    build-fuzz/corpus-dispatcher
build-fuzz/fuzz/functionstring_fuzz -max_total_time=60 -max_len=1100 -print_final_stats=1 \
    build-fuzz/corpus fuzz/corpus
build-fuzz/fuzz/profilexml_fuzz -max_total_time=45 -max_len=4096 -dict=fuzz/profilexml.dict \
    -print_final_stats=1 build-fuzz/corpus-profile fuzz/corpus-profile
build-fuzz/fuzz/devicedoc_fuzz -max_total_time=30 -max_len=6144 -dict=fuzz/profilexml.dict \
    -print_final_stats=1 build-fuzz/corpus-devicedoc fuzz/corpus-devicedoc
build-fuzz/fuzz/dispatcher_fuzz -max_total_time=30 -max_len=256 -print_final_stats=1 \
    build-fuzz/corpus-dispatcher fuzz/corpus-dispatcher

ctest --test-dir build-test --output-on-failure -L e2e
