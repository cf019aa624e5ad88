#!/bin/sh
# Starts SnipBench for the user who calls it. The program's own folder can't be written there, so what is selected goes
# below the user's pictures folder unless `-o` says where; and the user's configuration file counts, if there is one and
# none is given. The rest is the program's: this script becomes it.
set -u

here=${0%/*}
program=$here/../lib/snipbench/Binaries/Linux-x64/SnipBench
if [ ! -x "$program" ]; then # started through a link
    here=$(readlink -f -- "$0")
    program=${here%/*}/../lib/snipbench/Binaries/Linux-x64/SnipBench
fi

# An option begins with a hyphen and a value never does, so an argument is a value only where an option stands before
# it. Of an option given twice the first counts.
directory='' configuration='' annotate='' previous=''
for argument; do
    case $argument in
        -o | --o | -OutDirectory | --OutDirectory) directory=given ;;
        -c | --c | -ConfigFile | --ConfigFile | -cj | --cj | -ConfigJson | --ConfigJson) configuration=given ;;
    esac
    case $previous in
        -a | --a | -Annotate | --Annotate) annotate=${annotate:-$argument} ;;
    esac
    previous=$argument
done

home=${HOME:-.}
if [ -z "$configuration" ]; then
    configuration=${XDG_CONFIG_HOME:-$home/.config}/snipbench/config.json
    [ ! -f "$configuration" ] || set -- "$@" -c "$configuration"
fi
if [ -z "$directory" ]; then
    pictures=$(xdg-user-dir PICTURES 2>/dev/null)
    case $annotate in
        [tT]*) name=Annotations ;;
        *) name=Screenshots ;;
    esac
    set -- "$@" -o "${pictures:-$home}/$name"
fi
exec "$program" "$@"
