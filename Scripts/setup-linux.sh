#!/usr/bin/env bash
# Installs what SnipBench needs on Debian 12 or 13 and is missing: packages from the configured Debian archive, and the
# font of the labels from the configured npm registry. If nothing is missing it fetches nothing and asks for no rights.
#
#   Scripts/setup-linux.sh              what building and running the program needs
#   Scripts/setup-linux.sh --demo       and what the demo on a virtual display needs
#   Scripts/setup-linux.sh --benchmark  and what the benchmarks need beside that
#   Scripts/setup-linux.sh --test       and what the tests need
#   Scripts/setup-linux.sh --coverage   and what counting the lines they run needs
#   Scripts/setup-linux.sh --package    what building and packing the program needs
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd -P)
textures=$root/Resources/UI/Textures
. "$root/Scripts/packages.sh"

packages=(
    cmake ninja-build g++ libc6-dev
    libfmt-dev rapidjson-dev libpng-dev zlib1g-dev libdeflate-dev libfreetype-dev
    libx11-dev libx11-xcb-dev libxcb1-dev libxcb-shm0-dev libxext-dev libxtst-dev libxrandr-dev libxfixes-dev libxi-dev
    libegl-dev libgl-dev libopengl-dev
    libegl1 libopengl0 libgl1-mesa-dri
)
demo_packages=(xvfb)
benchmark_packages=(libbenchmark-dev valgrind python3)
test_packages=(xvfb x11-xkb-utils openbox xcompmgr locales libgtest-dev libgmock-dev clang-format python3)
coverage_packages=(gcovr)
# What the tests of packages, documents and recipes use: they skip what is missing.
installed_packages=(
    xdotool lintian desktop-file-utils appstream shellcheck man-db zsh fish xclip xdg-user-dirs tesseract-ocr
)
package_packages=(dpkg-dev librsvg2-bin patchelf python3 wixl)

font_package=@expo-google-fonts/mulish@0.4.2
font_package_sha256=d452cc6e7ba464fb81ac3f782eeaa1435901a7605cd86097819526e52cc9a318
font_sha256=1d3c2067fd5abaa56cf27ea560ccb7c162d39a624fef53cb947b85a966b0fdae

case "${1:-}" in
    "") ;;
    --demo) packages+=("${demo_packages[@]}") ;;
    --benchmark) packages+=("${demo_packages[@]}" "${benchmark_packages[@]}") ;;
    --test) packages+=("${test_packages[@]}" "${package_packages[@]}" "${installed_packages[@]}") ;;
    --coverage) packages+=("${test_packages[@]}" "${coverage_packages[@]}") ;;
    --package) packages+=("${package_packages[@]}") ;;
    *) echo "usage: $0 [--demo | --benchmark | --test | --coverage | --package]" >&2; exit 2 ;;
esac

has_font()
{
    has_sha256 "$textures/Mulish-Regular.ttf" "$font_sha256" && [ -f "$textures/Mulish-LICENSE.txt" ]
}

install_font()
(
    scratch=$(mktemp -d)
    trap 'rm -rf "$scratch"' EXIT
    echo "Fetching the font: $font_package" >&2
    cd "$scratch"
    if ! archive=$(npm pack --loglevel=error "$font_package"); then
        echo "The font can't be fetched with npm. Is there a network, and a registry in npm's settings?" >&2
        exit 1
    fi
    if ! has_sha256 "$archive" "$font_package_sha256"; then
        echo "The archive of $font_package isn't the expected one; the font is not installed." >&2
        exit 1
    fi
    tar -xzf "$archive"
    mkdir -p "$textures"
    # The licence first, so that there is never a font without its licence.
    mv -f package/LICENSE_FONT "$textures/Mulish-LICENSE.txt"
    mv -f package/400Regular/Mulish_400Regular.ttf "$textures/Mulish-Regular.ttf"
)

if ! has_font && ! command -v npm >/dev/null; then
    packages+=(npm)
fi
require_packages "${packages[@]}"
has_font || install_font
