#!/usr/bin/env bash
# Installs the Debian packages the build, the tests and the benchmarks need, when any is missing.
set -euo pipefail
packages=(
  g++ gfortran cmake ninja-build pkg-config python3 python3-mpmath
  libgtest-dev libgmock-dev libbenchmark-dev libgsl-dev
  libopenblas64-openmp-dev libblas64-test liblapack64-test liblapacke-dev liblapack64-3 liblapack-doc
  libboost-dev libhwy-dev
  clang-14 libclang-rt-14-dev libomp-14-dev
)
missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
  echo "Installing: ${missing[*]}"
  SUDO=""; [ "$(id -u)" -ne 0 ] && SUDO="sudo"
  $SUDO apt-get update -qq
  DEBIAN_FRONTEND=noninteractive $SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}"
fi
