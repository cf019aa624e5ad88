#!/usr/bin/env bash
# Installs what SnipBench needs on Debian 12 or 13 and is missing: packages from the configured Debian archive, some of
# Wayland's protocol descriptions from its source packages, and the font of the labels from the configured npm registry.
# With nothing missing it fetches nothing and asks for no rights.
#
#   Scripts/setup-linux.sh              what building and running the program needs
#   Scripts/setup-linux.sh --demo       and what the demo on a virtual display needs
#   Scripts/setup-linux.sh --benchmark  and what the benchmarks need beside that
#   Scripts/setup-linux.sh --test       and what the tests need
#   Scripts/setup-linux.sh --wayland    and KWin and GNOME beside sway, which the tests install anyway
#   Scripts/setup-linux.sh --coverage   and what counting the lines they run needs
#   Scripts/setup-linux.sh --fuzz       and what the fuzzer needs
#   Scripts/setup-linux.sh --package    what building and packing the program needs
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd -P)
textures=$root/Resources/UI/Textures
protocols=$root/build/wayland-protocols
. "$root/Scripts/packages.sh"
. "$root/Scripts/sources.sh"

packages=(
    cmake ninja-build g++ libc6-dev
    libfmt-dev rapidjson-dev libpng-dev zlib1g-dev libdeflate-dev libfreetype-dev libkissfft-dev
    libx11-dev libx11-xcb-dev libxcb1-dev libxcb-shm0-dev libxext-dev libxtst-dev libxrandr-dev libxfixes-dev libxi-dev
    libwayland-dev wayland-protocols libxkbcommon-dev libsystemd-dev
    libegl-dev libgl-dev libopengl-dev
    libegl1 libopengl0 libgl1-mesa-dri
)
demo_packages=(xvfb)
benchmark_packages=(libbenchmark-dev valgrind python3)
test_packages=(xvfb x11-xkb-utils openbox xcompmgr locales libgtest-dev libgmock-dev clang-format python3)
# Compositors, which are needed by tests alone; they skip what isn't there.
compositor_packages=(sway swaybg dbus-daemon)
desktop_compositor_packages=(kwin-wayland gnome-shell xdg-desktop-portal-gnome libglib2.0-bin)
coverage_packages=(gcovr)
fuzz_packages=(clang libclang-rt-dev) # libFuzzer is in the second one
# What the tests of packages, documents and recipes use: they skip what is missing.
installed_packages=(
    xdotool lintian desktop-file-utils appstream shellcheck man-db zsh fish xclip xdg-user-dirs tesseract-ocr
    strace binutils
)
package_packages=(dpkg-dev librsvg2-bin patchelf python3 wixl)

font_package=@expo-google-fonts/mulish@0.4.2
font_package_sha256=d452cc6e7ba464fb81ac3f782eeaa1435901a7605cd86097819526e52cc9a318
font_sha256=1d3c2067fd5abaa56cf27ea560ccb7c162d39a624fef53cb947b85a966b0fdae

# Descriptions of Wayland's protocols that are in no binary package: the source package, the file, and its hash. The
# source packages of Debian 12 and 13 have the same ones, but that the last two came to Debian with 13.
protocol_descriptions=(
    wlroots wlr-layer-shell-unstable-v1.xml 996b8c66e1c2276c443336d4cb174634e8e5948823779042f244930525b79cc2
    wlroots wlr-screencopy-unstable-v1.xml 0f50f6187965b02782a12ba346ad950d6031454f6af6e1ac5b341a279ef16d56
    wlroots wlr-virtual-pointer-unstable-v1.xml 3ff6d540be0bc5228195bf072bde42117ea17945a5c2061add5d3cf97d6bb524
    wlroots virtual-keyboard-unstable-v1.xml 7ad7870003ecd592cae47dc19d277a609b7f18fd7b7be012623cf3225a7294f5
    wayland-protocols ext-image-capture-source-v1.xml eaa9e6c3b9c254762c2d8cbb691192bea777e221f18fbf0ba78c0feb02d54e77
    wayland-protocols ext-image-copy-capture-v1.xml 41a446653f788fabb404cab3168c0bd667c1ff4b54f1f0bb1e18810a1f47d73f
    wayland-protocols ext-foreign-toplevel-list-v1.xml 402d97291a4041e377d9cc3930af7507bd9752edfc19810c2b4c8cf34aac3a3d
)

case "${1:-}" in
    "") ;;
    --demo) packages+=("${demo_packages[@]}") ;;
    --benchmark) packages+=("${demo_packages[@]}" "${benchmark_packages[@]}") ;;
    --test | --wayland)
        packages+=("${test_packages[@]}" "${package_packages[@]}" "${installed_packages[@]}" "${compositor_packages[@]}")
        [ "$1" = --test ] || packages+=("${desktop_compositor_packages[@]}")
        ;;
    --fuzz) packages+=("${test_packages[@]}" "${fuzz_packages[@]}") ;;
    --coverage) packages+=("${test_packages[@]}" "${coverage_packages[@]}") ;;
    --package) packages+=("${package_packages[@]}") ;;
    *) echo "usage: $0 [--demo | --benchmark | --test | --wayland | --coverage | --fuzz | --package]" >&2; exit 2 ;;
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

# Whether the descriptions of a source package are there, or of any.
has_protocols() # [PACKAGE]
{
    local index
    for ((index = 0; index < ${#protocol_descriptions[@]}; index += 3)); do
        [ "${protocol_descriptions[index]}" = "${1:-${protocol_descriptions[index]}}" ] || continue
        has_sha256 "$protocols/${protocol_descriptions[index + 1]}" "${protocol_descriptions[index + 2]}" || return
    done
}

# Takes those of one package from its newest source package. A hash that isn't the expected one is that of no file here.
install_protocols_of() # SCRATCH PACKAGE
{
    local file index package=$2
    echo "Fetching descriptions of Wayland's protocols: the sources of $package" >&2
    mkdir -p "$1/$package" "$protocols"
    if ! (cd "$1/$package" && apt_sources apt-get "$1/apt" source --download-only --tar-only "$package" >&2); then
        echo "The sources of $package can't be fetched from the configured Debian archive." >&2
        exit 1
    fi
    tar --no-same-owner -xf "$1/$package/$package"_*.orig.tar.* -C "$1/$package"
    for ((index = 0; index < ${#protocol_descriptions[@]}; index += 3)); do
        [ "${protocol_descriptions[index]}" = "$package" ] || continue
        file=$(find "$1/$package" -name "${protocol_descriptions[index + 1]}")
        if ! has_sha256 "$file" "${protocol_descriptions[index + 2]}"; then
            echo "${protocol_descriptions[index + 1]} of $package isn't the expected one; it is not taken." >&2
            exit 1
        fi
        mv -f "$file" "$protocols/"
    done
}

install_protocols()
(
    if [ -z "$(debian_release)" ]; then
        echo "This isn't a Debian system. These have to be in $protocols already, with these SHA-256 sums:" >&2
        printf '    %s: %s %s\n' "${protocol_descriptions[@]}" >&2
        exit 1
    fi
    scratch=$(mktemp -d)
    trap 'rm -rf "$scratch"' EXIT
    make_source_lists "$scratch/apt"
    if [ "$(debian_release)" = 12 ]; then
        # The next release's, from the same archives. Others than Debian's needn't have one of that name.
        sed -i 's/\bbookworm\b/trixie/g' "$scratch/apt/parts"/*
    fi
    apt_sources apt-get "$scratch/apt" update >&2 || true
    for package in wlroots wayland-protocols; do
        has_protocols "$package" || install_protocols_of "$scratch" "$package"
    done
)

if ! has_font && ! command -v npm >/dev/null; then
    packages+=(npm)
fi
if ! has_protocols; then
    packages+=(bzip2 xz-utils) # what its archives are packed with
fi
require_packages "${packages[@]}"
has_font || install_font
has_protocols || install_protocols
