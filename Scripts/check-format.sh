#!/usr/bin/env bash
# Checks that every C++ source of ours has the format of .clang-format, and names those that don't. Each major version
# of clang-format formats in its own way, so one of them decides; without that one nothing is checked, and the exit code
# is 77.
set -euo pipefail

major=14
skipped=77
formatter=clang-format
if command -v "clang-format-$major" >/dev/null; then
    formatter=clang-format-$major
fi
version=$("$formatter" --version)
if [[ ! $version =~ version\ $major\. ]]; then
    echo "The format is checked by clang-format $major alone. This is: $version"
    exit "$skipped"
fi

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd -P)
cd "$root"
folders=()
for folder in Source Tests Examples Benchmarks Packaging; do
    if [ -d "$folder" ]; then
        folders+=("$folder")
    fi
done
find "${folders[@]}" \( -name '*.cpp' -o -name '*.h' \) -print0 |
    xargs -0 "$formatter" --dry-run --Werror
