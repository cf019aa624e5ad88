#!/usr/bin/env bash
# Builds both programs for Windows and packs them with all they need: build/SnipBench-<version>-Windows-x64.zip, whose
# path is printed. Unpacked anywhere they run.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd -P)
cd "$root"
version=$(sed -n 's/^project(SnipBench VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt)
name=SnipBench-$version-Windows-x64
stage=build/package/$name

{
    Scripts/setup-windows.sh
    Scripts/configure.sh windows-release -DORVIK_BUILD_TESTS=OFF
    cmake --build build/windows-release --target SnipBench SnipBenchData
} >&2

rm -rf build/package
mkdir -p "$stage/Binaries/Windows-x64" "$stage/Licenses"
for program in SnipBench snipbench-data; do
    x86_64-w64-mingw32-strip -o "$stage/Binaries/Windows-x64/$program.exe" "Binaries/Windows-x64/$program.exe"
done
cp -R Resources "$stage/"
mv "$stage/Resources/UI/Textures/Mulish-LICENSE.txt" "$stage/Licenses/Mulish.txt"
cp LICENSE "$stage/License.txt"
cp CHANGELOG.md "$stage/Changelog.txt"
cp Packaging/Windows-Readme.txt "$stage/Readme.txt"
Scripts/stage-documents.sh "$stage/Docs"

# The linked libraries, each with the licence text of its package, and named in the supply list.
components=()
while read -r package title; do
    cp -L "/usr/share/doc/$package/copyright" "$stage/Licenses/$title.txt"
    components+=("$package=$title")
done <<'LIST'
libpng-dev libpng
libdeflate-dev libdeflate
libfreetype-dev FreeType
libz-mingw-w64-dev zlib
libkissfft-dev KISS-FFT
libfmt-dev fmt
rapidjson-dev RapidJSON
gcc-mingw-w64-base GCC-runtime
mingw-w64-common mingw-w64
LIST
SOURCE_DATE_EPOCH=$(. Scripts/release.sh; release_time) \
    Scripts/make-sbom.py windows "$stage" "$stage/Sbom.cdx.json" "${components[@]}"

# On older versions, Windows' own text editor only knows these line ends.
find "$stage" -maxdepth 2 -name '*.txt' -exec sed -i 's/\r*$/\r/' {} +

rm -f "build/$name.zip"
(cd build/package && cmake -E tar cf "../$name.zip" --format=zip "$name")
echo "$root/build/$name.zip"
