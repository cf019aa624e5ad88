#!/usr/bin/env bash
# Installs what building SnipBench for Windows needs on Debian 12 or 13, in addition to what Scripts/setup-linux.sh
# installs: the cross compiler, Wine, and libraries that Debian doesn't have for Windows. The libraries are built once,
# from the archive's source packages, in build/windows-dependencies. If nothing is missing it fetches nothing and asks
# for no rights.
#
#   Scripts/setup-windows.sh           what building and running the program needs
#   Scripts/setup-windows.sh --test    and what the tests need
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd -P)
dependencies=$root/build/windows-dependencies
. "$root/Scripts/packages.sh"
. "$root/Scripts/sources.sh"

packages=(
    g++-mingw-w64-x86-64-posix libz-mingw-w64-dev dpkg-dev make
    wine wine64 xvfb xauth
)
case "${1:-}" in
    "") "$root/Scripts/setup-linux.sh" ;;
    --test) "$root/Scripts/setup-linux.sh" --test; packages+=(googletest) ;;
    *) echo "usage: $0 [--test]" >&2; exit 2 ;;
esac
require_packages "${packages[@]}"

# Each release of Debian has its own versions. A newer release's are tried before their hashes are written here.
case $(debian_release) in
    12)
        deflate_archive_sha256=89e7df898c37c3427b0f39aadcf733731321a278771d20fc553f92da8d4808ac  # 1.14
        png_archive_sha256=a00e9d2f2f664186e4202db9299397f851aea71b36a35e74910b8820e380d441      # 1.6.39
        freetype_archive_sha256=7dedb6b9adf331559daea614a83b8de42a753e685ec8e1c4bdb4529eb880b0d1 # 2.12.1
        ;;
    13)
        deflate_archive_sha256=1ab18349b9fb0ce8a0ca4116bded725be7dcbfa709e19f6f983d99df1fb8b25f  # 1.23
        png_archive_sha256=b17e99026055727e8cba99160c3a9a7f9af788e9f786daeadded5a42243f1dd0      # 1.6.48
        freetype_archive_sha256=686ec73cbf6783b245dd068a09ce807b729ac0f8a46dd70f7867923c32fdf4de # 2.13.3
        ;;
    *)
        echo "The libraries for Windows are built from the source packages of Debian 12 or 13; this is neither." >&2
        exit 1
        ;;
esac

build_library() # SOURCE BUILD [cmake options]
{
    local source=$1 build=$2
    shift 2
    echo "Building $(basename "$source") for Windows" >&2
    cmake -S "$source" -B "$build" -G Ninja --toolchain "$root/CMake/Toolchain-mingw-w64.cmake" \
        -DCMAKE_BUILD_TYPE=Release -DCMAKE_INSTALL_PREFIX="$dependencies" -DBUILD_SHARED_LIBS=OFF \
        -DCMAKE_POLICY_DEFAULT_CMP0077=NEW -Wno-dev "$@" >"$build.log" 2>&1 &&
        cmake --build "$build" --target install >>"$build.log" 2>&1 || {
        tail -n 30 "$build.log" >&2
        exit 1
    }
}

# libdeflate: before version 1.15 its sources have no build for CMake, but one for make.
build_deflate() # SOURCE BUILD
{
    if [ -f "$1/CMakeLists.txt" ]; then
        build_library "$1" "$2" -DLIBDEFLATE_BUILD_SHARED_LIB=OFF -DLIBDEFLATE_BUILD_GZIP=OFF
        return
    fi
    echo "Building libdeflate for Windows" >&2
    make -C "$1" PREFIX="$dependencies" CC=x86_64-w64-mingw32-gcc-posix AR=x86_64-w64-mingw32-gcc-ar-posix \
        CFLAGS=-O2 libdeflatestatic.lib >"$1.log" 2>&1 || {
        tail -n 30 "$1.log" >&2
        exit 1
    }
    mkdir -p "$dependencies/include" "$dependencies/lib"
    cp "$1/libdeflate.h" "$dependencies/include/"
    cp "$1/libdeflatestatic.lib" "$dependencies/lib/libdeflate.a"
}

# The folder of a header-only library, from its package: in the system's folder it is beside headers of this system.
copy_headers() # PACKAGE FOLDER
{
    local header
    header=$(dpkg-query -L "$1" | awk -v folder="/include/$2/" 'index($0, folder) && /\.h$/ && !found++')
    mkdir -p "$dependencies/include"
    cp -RL "$(dirname "$header")" "$dependencies/include/"
}

build_libraries()
(
    scratch=$(mktemp -d)
    trap 'rm -rf "$scratch"' EXIT
    make_source_lists "$scratch/apt"
    apt_sources apt-get "$scratch/apt" update >&2
    fetch_source "$scratch" libdeflate 'libdeflate_*.orig.tar.gz' "$deflate_archive_sha256"
    build_deflate "$scratch/libdeflate" "$scratch/build-libdeflate"
    fetch_source "$scratch" libpng1.6 'libpng1.6_*.orig.tar.gz' "$png_archive_sha256"
    fetch_source "$scratch" freetype 'freetype_*.orig.tar.xz' "$freetype_archive_sha256"
    build_library "$scratch/libpng1.6" "$scratch/build-libpng" -DPNG_SHARED=OFF -DPNG_TESTS=OFF
    # With libpng's zlib: FreeType's own copy would be a second one.
    build_library "$scratch/freetype" "$scratch/build-freetype" -DFT_REQUIRE_ZLIB=ON -DFT_DISABLE_BZIP2=ON \
        -DFT_DISABLE_PNG=ON -DFT_DISABLE_HARFBUZZ=ON -DFT_DISABLE_BROTLI=ON
    copy_headers libfmt-dev fmt
    copy_headers rapidjson-dev rapidjson
)

# Of the Fourier transform: headers alone.
copy_fourier()
{
    copy_headers libkissfft-dev kissfft
}

build_test_framework()
(
    scratch=$(mktemp -d)
    trap 'rm -rf "$scratch"' EXIT
    root_list=$(dpkg-query -L googletest | awk '/\/googletest\/CMakeLists.txt$/ && !found++')
    build_library "${root_list%/CMakeLists.txt}" "$scratch/build-googletest"
)

# Each stamp names what was built. A changed version, here or in the archive's headers, causes a new build.
build_once() # STAMP VERSIONS FUNCTION
{
    local stamp=$dependencies/$1
    if [ -f "$stamp" ] && [ "$(cat "$stamp")" = "$2" ]; then
        return
    fi
    "$3"
    echo "$2" >"$stamp"
}

versions()
{
    dpkg-query -W -f '${Package} ${Version}\n' "$@"
}

mkdir -p "$dependencies"
build_once libraries.stamp "$deflate_archive_sha256 $png_archive_sha256 $freetype_archive_sha256 $(versions libfmt-dev rapidjson-dev \
    libz-mingw-w64-dev gcc-mingw-w64-x86-64-posix)" build_libraries
build_once fourier.stamp "$(versions libkissfft-dev)" copy_fourier
if [ "${1:-}" = --test ]; then
    build_once googletest.stamp "$(versions googletest gcc-mingw-w64-x86-64-posix)" build_test_framework
fi
