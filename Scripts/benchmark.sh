#!/usr/bin/env bash
# Builds and runs the benchmarks that need a display, and the one of PNG files, and prints their figures: the steps of a
# start, single operations and whole runs at two resolutions. `./test bench` measures what needs no display.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd -P)
cd "$root"
build=build/linux-release

Scripts/setup-linux.sh --benchmark
Scripts/configure.sh linux-release -DORVIK_BUILD_TESTS=OFF >/dev/null
cmake "$build" >/dev/null # finds what was just installed
cmake --build "$build" --target Benchmarks >/dev/null

for size in 1920x1080 3840x2160; do
    "$build/Benchmarks/StartTimings" "$size"
    "$build/Benchmarks/OperationTimings" "$size"
    "$build/Benchmarks/RunTimings" Binaries/Linux-x64/SnipBench "$size"
done

"$build/Benchmarks/PngTimings"
