#!/usr/bin/env bash
# Installs what is missing, then builds and runs every test: the release build (tests, examples, the
# benchmarks run briefly, and, built with clang beside it, the parsers' fuzzers run for a fixed number of
# inputs and the threading tests under ThreadSanitizer), then the AddressSanitizer + UndefinedBehaviorSanitizer
# build of the tests.
set -euo pipefail
cd "$(dirname "$0")/.."
tools/deps.sh
jobs=$(nproc)

cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=Release >/dev/null
cmake --build build -j "$jobs"
ctest --test-dir build --output-on-failure -j "$jobs" --timeout 600

cmake -S . -B build-sanitize -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DVEK_SANITIZE=ON >/dev/null
cmake --build build-sanitize -j "$jobs"
ASAN_OPTIONS=detect_leaks=1:abort_on_error=0 UBSAN_OPTIONS=print_stacktrace=1 \
  ctest --test-dir build-sanitize --output-on-failure -j "$jobs" --timeout 900
