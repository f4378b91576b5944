#!/bin/bash
# run_benchmarks.sh FOLDER COMPARE ARGUMENTS...: runs FOLDER/vexa_bench with the arguments, then
# times the programs of bench/programs one by one, and last, if COMPARE names a script, lets it
# time FOLDER/vexa beside other systems.
set -euo pipefail
folder=$1
compare=$2
shift 2
root=$(cd "$(dirname "$0")/.." && pwd)

if [ -x "$folder/vexa_bench" ]; then
  "$folder/vexa_bench" "$@"
else
  echo "No micro-benchmarks: bench/ holds none, or Google Benchmark is not installed."
fi

shopt -s nullglob
for program in "$root"/bench/programs/*.vxp; do
  TIMEFORMAT="$(basename "$program" .vxp): %R s wall, %U s user"
  time "$folder/vexa" run "$program" >/dev/null
done

if [ -n "$compare" ]; then
  python3 "$compare" --vexa "$folder/vexa"
fi
