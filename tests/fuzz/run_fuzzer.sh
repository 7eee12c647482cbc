#!/bin/sh
# Runs one fuzzer from its committed seeds: the inputs it finds go to a scratch folder (emptied first), so
# the seeds stay as committed, and so does any crashing input. Usage:
#   run_fuzzer.sh FUZZER SEEDS SCRATCH [libFuzzer options, e.g. -runs=N or -max_total_time=S]
set -eu
fuzzer=$1
seeds=$2
scratch=$3
shift 3
rm -rf "$scratch"
mkdir -p "$scratch/corpus"
exec "$fuzzer" -print_final_stats=1 -artifact_prefix="$scratch/" "$@" "$scratch/corpus" "$seeds"
