#!/usr/bin/env bash
# Runs a Windows program under Wine, in a prefix of this project that is made at the first call. Returns the low eight
# bits of the program's exit code.
#
#   Scripts/wine.sh PROGRAM [arguments]
#   Scripts/wine.sh --display PROGRAM [arguments]   on a virtual display if there is none
#   Scripts/wine.sh --prefix-only           only makes the prefix
#   Scripts/wine.sh --end                   ends what runs in the prefix
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd -P)
export WINEPREFIX=${WINEPREFIX:-$root/build/wine-prefix}
export WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml,winemenubuilder.exe="
export LC_ALL=C.UTF-8 # file names are UTF-8
export LIBGL_ALWAYS_SOFTWARE=1

make_prefix()
(
    mkdir -p "$WINEPREFIX"
    exec 9>"$WINEPREFIX/made.lock"
    flock 9
    if [ ! -f "$WINEPREFIX/made" ]; then
        # Without output and without a display: nothing of it is a window.
        env -u DISPLAY wineboot --init >&2 9>&-
        wineserver --wait 9>&-
        touch "$WINEPREFIX/made"
    fi
)

[ -f "$WINEPREFIX/made" ] || make_prefix
if [ "${1:-}" = --prefix-only ]; then
    exit 0
fi
if [ "${1:-}" = --end ]; then
    wineserver --kill || true # fails if nothing runs
    exec wineserver --wait
fi
show=false
if [ "${1:-}" = --display ]; then
    show=true
    shift
fi
if $show && [ -z "${DISPLAY:-}" ]; then
    exec xvfb-run --auto-servernum --server-args="-screen 0 1280x720x24 -noreset" wine "$@"
fi
exec wine "$@"
