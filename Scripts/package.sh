#!/usr/bin/env bash
# Builds all packages, for this release of Debian, for Linux systems in general and for Windows, and prints the path of
# each and its SHA-256 hash.
#
#   Scripts/package.sh          all of them
#   Scripts/package.sh linux    those for Linux
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd -P)
cd "$root"

{
    Scripts/setup-linux.sh --package
    Scripts/configure.sh linux-release -DORVIK_BUILD_TESTS=OFF
    cmake --build build/linux-release --target SnipBench SnipBenchData
} >&2

files=("$(Scripts/package-deb.sh)" "$(Scripts/package-tar.sh)")
if [ "${1:-}" != linux ]; then
    files+=("$(Scripts/package-windows.sh)" "$(Scripts/package-msi.sh)")
fi
for file in "${files[@]}"; do
    echo "$file"
    echo "    SHA-256 $(sha256sum <"$file" | cut -d ' ' -f 1)"
done
