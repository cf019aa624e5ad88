#!/bin/sh
# One selection for a script: starts SnipBench, waits for it, and reads its object, its files and its code.
#
#   snip.sh [-l SECONDS] PROGRAM [options of SnipBench]
#
# Prints the path of the image and its size. Ends with 0; with 1 if nothing was selected or saved; with 124 if the limit
# of time passed; with 127 if the program can't be started, 2 if the call is wrong; else as SnipBench did. The image
# stays in a new folder below TMPDIR.
set -eu

limit=60
if [ "${1:-}" = -l ]; then
    limit=${2:-0}
    shift $(($# < 2 ? $# : 2))
fi
if [ $# -eq 0 ] || ! [ "$limit" -gt 0 ] 2>/dev/null; then
    echo "usage: $0 [-l SECONDS] PROGRAM [options of SnipBench]" >&2
    exit 2
fi
program=$1
shift
shots=$(mktemp -d)
trap 'rm -r "$shots"; exit 130' INT

code=0
output=$(timeout --foreground "$limit" "$program" -s true -o "$shots" "$@") || code=$?

# The object is the last thing on standard output, from a line that is { to one that is }.
name=$(printf '%s\n' "$output" | sed -n '/^{$/,/^}$/s/^ *"name": "\(.*\)",$/\1/p')
case $code in
    0) ;;
    124) echo "No selection within $limit seconds." >&2 ;;
    255) echo "$name: an option is wrong, or the region isn't within the picture." >&2 ;;
    254) echo "$name: the picture can't be read or shown." >&2 ;;
    253) echo "$name: there is no display, or none of that name." >&2 ;;
    252 | 251) echo "$name: the overlay can't be shown; the log says why." >&2 ;;
    134) echo "An error; ~/.orvik/Logs may say more." >&2 ;;
    126 | 127)
        echo "The program can't be started." >&2
        code=127
        ;;
    *) if [ "$code" -gt 128 ]; then echo "Ended by signal $((code - 128))." >&2; else echo "Ended with $code." >&2; fi ;;
esac
if [ "$code" -ne 0 ]; then
    rm -r "$shots"
    exit "$code"
fi

# Both files have the same name, braces included. The JSON file comes last: where it is, the image is whole.
for meta in "$shots"/*.json; do
    if [ ! -e "$meta" ]; then
        if rmdir "$shots" 2>/dev/null; then
            echo "Nothing was selected." >&2
        else
            rm -r "$shots"
            echo "The selection couldn't be saved." >&2
        fi
        exit 1
    fi
    for image in "${meta%.json}".[pb][nm][gp]; do
        width=$(sed -n 's/^ *"width": \([0-9]*\),*$/\1/p' "$meta")
        height=$(sed -n 's/^ *"height": \([0-9]*\),*$/\1/p' "$meta")
        echo "$image ${width}x$height"
    done
done
