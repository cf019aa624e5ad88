#!/usr/bin/env bash
# Checks that every C++ source of ours is formatted as .clang-format has it; names those that aren't.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd -P)
cd "$root"
folders=()
for folder in Source Tests Examples Benchmarks; do
    if [ -d "$folder" ]; then
        folders+=("$folder")
    fi
done
find "${folders[@]}" \( -name '*.cpp' -o -name '*.h' \) -print0 |
    xargs -0 clang-format --dry-run --Werror
