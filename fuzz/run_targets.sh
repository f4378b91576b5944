#!/bin/bash
# run_targets.sh FOLDER SECONDS: runs each fuzz target of FOLDER for so long, starting from the
# programs and drawings of examples/ and tests/. What breaks a target is left beside it in findings/, and
# what it learnt in corpus/, from where the next run goes on.
set -euo pipefail
folder=$1
seconds=$2
root=$(cd "$(dirname "$0")/.." && pwd)

seeds=$folder/seeds
rm -rf "$seeds"
mkdir -p "$seeds"
find "$root/examples" "$root/tests/programs" -name '*.vxp' -size -16k 2>/dev/null |
  while IFS= read -r program; do
    name=${program#"$root/"}
    cp "$program" "$seeds/${name//\//_}"
  done
cp "$root"/tests/data/drawings/*.drw "$seeds"

export ASAN_OPTIONS=allocator_may_return_null=1
export UBSAN_OPTIONS=print_stacktrace=1
targets=0
broken=0
for target in "$folder"/fuzz_*; do
  [ -x "$target" ] || continue
  name=$(basename "$target")
  mkdir -p "$folder/findings/$name" "$folder/corpus/$name"
  echo "== $name, $seconds s"
  targets=$((targets + 1))
  "$target" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 -max_len=16384 \
    -print_final_stats=1 -artifact_prefix="$folder/findings/$name/" \
    "$folder/corpus/$name" "$seeds" || broken=$((broken + 1))
done
echo "$targets fuzz targets, $broken broken"
[ "$broken" -eq 0 ]
