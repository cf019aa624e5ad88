#!/usr/bin/env bash
# Lays out an installation of the built program below a folder, which becomes /usr of a package or the root of an
# archive: the launcher, both programs with their resources, manual page, completions, desktop entry, icons and documents.
#
#   Scripts/stage-linux.sh FOLDER
#
# Nothing is built. ORVIK_HOMEPAGE is the web address below which the tree is published: software centres take the
# guide's pictures from there. Without it the address is one that leads nowhere, and that can be seen from it.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd -P)
. "$root/Scripts/release.sh"
homepage=${ORVIK_HOMEPAGE:-https://orvik.invalid/snipbench}
prefix=$1
program=$root/Binaries/Linux-x64/SnipBench
data_program=$root/Binaries/Linux-x64/snipbench-data
resources=$prefix/lib/snipbench/Resources
documents=$prefix/share/doc/snipbench
help=$(mktemp -d)
trap 'rm -rf "$help"' EXIT

put() # MODE SOURCE TARGET
{
    install -D -m "$1" "$2" "$3"
}

put_program()
{
    local file binaries=$prefix/lib/snipbench/Binaries/Linux-x64
    put 755 "$program" "$binaries/SnipBench"
    put 755 "$data_program" "$binaries/snipbench-data"
    strip --strip-unneeded --remove-section=.comment "$binaries/SnipBench" "$binaries/snipbench-data"
    put 755 "$root/Packaging/Linux/snipbench.sh" "$prefix/bin/snipbench"
    ln -s ../lib/snipbench/Binaries/Linux-x64/snipbench-data "$prefix/bin/snipbench-data"
    for file in "$root"/Resources/Schemas/*.json "$root"/Resources/UI/Shaders/* "$root"/Resources/UI/Textures/*.ttf; do
        put 644 "$file" "$resources/${file#"$root"/Resources/}"
    done
}

put_help()
{
    "$root/Scripts/make-help.py" "$program" "$help" "$(release_date)"
    put 644 "$help/snipbench.bash" "$prefix/share/bash-completion/completions/snipbench"
    put 644 "$help/_snipbench" "$prefix/share/zsh/vendor-completions/_snipbench"
    put 644 "$help/snipbench.fish" "$prefix/share/fish/vendor_completions.d/snipbench.fish"
    "$root/Scripts/make-data-help.py" "$data_program" "$help" "$(release_date)"
    put 644 "$help/snipbench-data.bash" "$prefix/share/bash-completion/completions/snipbench-data"
    put 644 "$help/_snipbench-data" "$prefix/share/zsh/vendor-completions/_snipbench-data"
    put 644 "$help/snipbench-data.fish" "$prefix/share/fish/vendor_completions.d/snipbench-data.fish"
    gzip -9n "$help/snipbench.1" "$help/snipbench-data.1"
    put 644 "$help/snipbench.1.gz" "$prefix/share/man/man1/snipbench.1.gz"
    put 644 "$help/snipbench-data.1.gz" "$prefix/share/man/man1/snipbench-data.1.gz"
}

put_desktop_entry()
{
    local size icons=$prefix/share/icons/hicolor
    local metadata=$prefix/share/metainfo/invalid.orvik.snipbench.metainfo.xml
    put 644 "$root/Packaging/Linux/snipbench.desktop" "$prefix/share/applications/snipbench.desktop"
    put 644 "$root/Packaging/Linux/snipbench.metainfo.xml.in" "$metadata"
    sed -i "s|@VERSION@|$(release_version)|; s|@DATE@|$(release_date)|; s|@HOMEPAGE@|$homepage|; /^<!--/d" "$metadata"
    put 644 "$root/Packaging/snipbench.svg" "$icons/scalable/apps/snipbench.svg"
    for size in 16 22 24 32 36 48 64 72 96 128 192 256 512; do
        mkdir -p "$icons/${size}x$size/apps"
        rsvg-convert --width $size --height $size "$root/Packaging/snipbench.svg" \
            --output "$icons/${size}x$size/apps/snipbench.png"
        chmod 644 "$icons/${size}x$size/apps/snipbench.png"
    done
}

put_documents()
{
    "$root/Scripts/stage-documents.sh" "$documents"
    put 644 "$root/CHANGELOG.md" "$documents/changelog"
    gzip -9n "$documents/changelog"
    write_copyright >"$documents/copyright"
    chmod 644 "$documents/copyright"
}

# The licences of the program and of its parts.
write_copyright()
{
    echo 'SnipBench'
    echo
    cat "$root/LICENSE"
    printf '\n\nThe font Mulish, lib/snipbench/Resources/UI/Textures/Mulish-Regular.ttf\n\n'
    cat "$root/Resources/UI/Textures/Mulish-LICENSE.txt"
    printf '\n\nRapidJSON, whose headers are built into the program\n\n'
    cat /usr/share/doc/rapidjson-dev/copyright
    printf '\n\nKISS FFT, whose headers are built into snipbench-data\n\n'
    cat /usr/share/doc/libkissfft-dev/copyright
}

put_program
put_help
put_desktop_entry
put_documents
