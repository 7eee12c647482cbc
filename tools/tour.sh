#!/usr/bin/env bash
# Installs what is missing, builds the library and runs the tour.
set -euo pipefail
cd "$(dirname "$0")/.."
tools/deps.sh
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=Release >/dev/null
cmake --build build --target tour
build/examples/tour
