#!/usr/bin/env bash
# Installs what is missing, then builds and runs every test: the release build (tests, examples, the
# benchmarks run briefly, and, built with clang beside it, the parsers' fuzzers run for a fixed number of
# inputs and the threading tests under ThreadSanitizer), then the AddressSanitizer + UndefinedBehaviorSanitizer
# build of the tests.
set -euo pipefail
cd "$(dirname "$0")/.."
tools/deps.sh
jobs=$(nproc)

# The sweeps' and the fuzzers' summaries, from the log ctest keeps of the tests' output.
summaries() {
  awk '/^[0-9]+\/[0-9]+ Test: / { test = $3 }
       /sweep summary$/ { show = 1 }
       show && !/not swept: internal/ { print }
       show && /new failures$/ { show = 0 }
       /^Done [0-9]+ runs/ { printf "%s: %s inputs\n", test, $2 }' "$1/Testing/Temporary/LastTest.log"
}

cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=Release >/dev/null
cmake --build build -j "$jobs"
ctest --test-dir build --output-on-failure -j "$jobs" --timeout 600
summaries build

cmake -S . -B build-sanitize -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DVEK_SANITIZE=ON \
  -DVEK_OPENBLAS_RENAMED_BY="$PWD/build/linalg/libvekob.a" >/dev/null
cmake --build build-sanitize -j "$jobs"
ASAN_OPTIONS=detect_leaks=1:abort_on_error=0 UBSAN_OPTIONS=print_stacktrace=1 \
  ctest --test-dir build-sanitize --output-on-failure -j "$jobs" --timeout 900
summaries build-sanitize
