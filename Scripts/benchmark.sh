#!/usr/bin/env bash
# Builds and runs the benchmarks and prints their figures: the steps of a start, single operations and whole runs at two
# resolutions, and the instructions of one mouse move (with valgrind, where it is installed).
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd -P)
cd "$root"
build=build/linux-release

Scripts/setup-linux.sh --benchmark
if [ -f "$build/build.ninja" ]; then
    cmake "$build" >/dev/null # finds what was just installed
else
    cmake --preset linux-release -DORVIK_BUILD_TESTS=OFF >/dev/null
fi
cmake --build "$build" --target Benchmarks >/dev/null

for size in 1920x1080 3840x2160; do
    "$build/Benchmarks/StartTimings" "$size"
    "$build/Benchmarks/OperationTimings" "$size"
    "$build/Benchmarks/RunTimings" Binaries/Linux-x64/SnipBench "$size"
done

"$build/Benchmarks/PngTimings"

if ! command -v valgrind >/dev/null; then
    echo "Instructions per mouse move: not counted, valgrind isn't installed."
    exit 0
fi

count_instructions() # STATE SIZE MOVES
{
    valgrind --tool=callgrind --callgrind-out-file=/dev/null "$build/Benchmarks/MouseMoves" "$@" 2>&1 |
        sed -n 's/.*Collected : \([0-9]*\).*/\1/p'
}

for size in 1920x1080 3840x2160; do
    for state in ready selecting; do
        few=$(count_instructions "$state" "$size" 100)
        many=$(count_instructions "$state" "$size" 1100)
        echo "Instructions of one mouse move, $state, $size: $(((many - few) / 1000))"
    done
done
