#!/usr/bin/env bash
# Makes the pictures and the example files of the user guide again (Docs/Pictures, Docs/Examples), with real runs of the
# program on a virtual display. Identifiers and times differ each time, so Docs/Formats.md, which shows some of the
# examples, has to be changed too; a test compares them. It starts SnipBench, which ends a run that is active.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd -P)
build=$root/build/linux-release
snips=/tmp/Snips # appears in a picture

"$root/Scripts/setup-linux.sh" --demo
"$root/Scripts/configure.sh" linux-release -DORVIK_BUILD_TESTS=OFF
cmake --build "$build" --target SnipBench GuidePictures
mkdir "$snips"
trap 'rm -r "$snips"' EXIT
mkdir -p "$root/Docs/Pictures" "$root/Docs/Examples"
"$build/Examples/GuidePictures" "$root/Binaries/Linux-x64/SnipBench" "$snips" "$root/Docs"
