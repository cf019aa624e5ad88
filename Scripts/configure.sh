#!/usr/bin/env bash
# Configures the build folder of a preset if needed, and leaves a configured one as it is. A folder that was configured
# for a tree in another place, because the tree was moved or copied, is made again: it would build in that other place.
#
#   Scripts/configure.sh PRESET [cmake options]            only if the folder isn't configured
#   Scripts/configure.sh --always PRESET [cmake options]   and if it is, with these options as well
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd -P)
always=false
if [ "${1:-}" = --always ]; then
    always=true
    shift
fi
preset=$1
shift
build=$root/build/$preset

belongs_elsewhere()
{
    local home
    home=$(sed -n 's/^CMAKE_HOME_DIRECTORY:INTERNAL=//p' "$build/CMakeCache.txt")
    [ ! "$home" -ef "$root" ]
}

if [ -f "$build/CMakeCache.txt" ] && belongs_elsewhere; then
    echo "The folder build/$preset was made for a tree in another place. It is made anew." >&2
    rm -rf "$build"
fi
if $always || [ ! -f "$build/build.ninja" ]; then
    (cd "$root" && cmake --preset "$preset" "$@")
fi
