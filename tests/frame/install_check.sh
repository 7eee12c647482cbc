#!/usr/bin/env bash
# Installs the built library into a scratch prefix and builds the C client against it with pkg-config, as a
# user would after `cmake --install`; the client must run and report IFAIL as documented.
set -euo pipefail
build_dir=$1
client=$2
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cmake --install "$build_dir" --prefix "$scratch/prefix" >/dev/null
pc=$(dirname "$(find "$scratch/prefix" -name vek.pc | head -n 1)")
export PKG_CONFIG_PATH="$pc"
libdir=$(pkg-config --variable=libdir vek)
cc "$client" $(pkg-config --cflags --libs vek) -Wl,-rpath,"$libdir" -o "$scratch/client"
cd "$scratch"
./client | tee output.txt
grep -qx ' \*\* On entry, MODE = 5\.' output.txt
grep -qx ' \*\* ABNORMAL EXIT from VEK Library routine X04ACF: IFAIL =     1' output.txt
