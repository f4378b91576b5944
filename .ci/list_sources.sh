#!/bin/bash
# Lists the C++ sources of the tree, one a line.
set -euo pipefail
cd "$(dirname "$0")/.."
for folder in src tests bench fuzz; do
  if [ -d "$folder" ]; then
    find "$folder" -name '*.cpp' -o -name '*.h'
  fi
done | LC_ALL=C sort
