#!/usr/bin/env bash
# Shows one snip from start to end where there is no display: a virtual X server with a sample desktop, the program on
# it, and a selection made with injected mouse input. Prints the paths of the resulting files, and leaves a picture of
# the overlay, taken during the selection, beside them. The server ends with the demo. Called by ./run, which builds
# what is needed.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd -P)
exec "$root/build/linux-release/Examples/SnipDemo" "$root/Binaries/Linux-x64/SnipBench" "$root/.temp/Demo"
