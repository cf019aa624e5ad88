#!/usr/bin/env bash
# Packs the program for Windows as an installer for one user: build/SnipBench-<version>-Windows-x64.msi, whose path is
# printed. It contains the same as the zip, and entries of the Start menu with their starter.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd -P)
cd "$root"
. Scripts/release.sh
version=$(release_version)
name=SnipBench-$version-Windows-x64
work=build/package-msi
stage=$work/$name

{
    Scripts/setup-linux.sh --package
    Scripts/package-windows.sh
    cmake --build build/windows-release --target SnipBenchStart
} >&2

rm -rf "$work"
mkdir -p "$work"
cp -R "build/package/$name" "$stage"
x86_64-w64-mingw32-strip -o "$stage/Binaries/Windows-x64/SnipBenchStart.exe" Binaries/Windows-x64/SnipBenchStart.exe
Scripts/make-installer.py "$stage" "$version"
(cd "$work" && wixl --arch x64 --output "../$name.msi" SnipBench.wxs) >&2
echo "$root/build/$name.msi"
