#!/usr/bin/env bash
# Packs the built program for Linux systems in general: build/SnipBench-<version>-Linux-x64.tar.gz, whose path is
# printed. It runs wherever it is unpacked. It contains the libraries whose names differ between distributions; those of
# the desktop, and the C and C++ libraries, are the system's.
set -euo pipefail
umask 022

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd -P)
cd "$root"
. Scripts/release.sh
name=SnipBench-$(release_version)-Linux-x64
stage=build/package-tar/$name
file=$root/build/$name.tar.gz
binaries=$stage/lib/snipbench/Binaries/Linux-x64
SOURCE_DATE_EPOCH=$(release_time)
export SOURCE_DATE_EPOCH

put_libraries()
{
    local library path program libraries=$stage/lib/snipbench/Libraries
    mkdir -p "$libraries"
    for library in fmt deflate; do
        path=$(ldd "$binaries/SnipBench" | awk -v name="lib$library.so." 'index($1, name) == 1 { print $3 }')
        install -m 644 "$path" "$libraries/$(basename "$path")"
        printf '\n\nlib%s, in lib/snipbench/Libraries\n\n' "$library" >>"$stage/share/doc/snipbench/copyright"
        cat "/usr/share/doc/lib$library-dev/copyright" >>"$stage/share/doc/snipbench/copyright"
    done
    for program in SnipBench snipbench-data; do
        patchelf --set-rpath "\$ORIGIN/../../Libraries" "$binaries/$program"
    done
}

rm -rf build/package-tar
Scripts/stage-linux.sh "$stage"
put_libraries
Scripts/make-sbom.py linux "$stage" "$stage/share/doc/snipbench/sbom.cdx.json"
install -m 644 Packaging/Linux/Readme.txt "$stage/Readme.txt"
install -m 644 LICENSE "$stage/License.txt"
tar --create --directory build/package-tar --sort=name --owner=0 --group=0 --numeric-owner \
    --mtime="@$SOURCE_DATE_EPOCH" "$name" | gzip -9n >"$file"
echo "$file"
