#!/usr/bin/env bash
# Packs the built programs for this release of Debian: build/snipbench_<version>_<architecture>.deb, whose path is
# printed. The libraries that it depends on are those that it is linked with here, so each release has a package of its
# own.
#
# DEBFULLNAME and DEBEMAIL name the maker of the package, as for Debian's own tools.
set -euo pipefail
umask 022

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd -P)
cd "$root"
. Scripts/packages.sh
. Scripts/release.sh
architecture=$(dpkg --print-architecture)
# The package of a newer Debian has a higher version, so that an upgrade of the system installs it.
version=$(release_version)-1~deb$(debian_release)
maintainer="${DEBFULLNAME:-Orvik} <${DEBEMAIL:-packages@orvik.invalid}>"
work=$root/build/package-deb
stage=$work/stage
file=$root/build/snipbench_${version}_$architecture.deb
SOURCE_DATE_EPOCH=$(release_time)
export SOURCE_DATE_EPOCH

# dpkg-shlibdeps reads a source package's control file, even a short one.
list_dependencies()
(
    mkdir -p "$work/debian"
    echo 'Source: snipbench' >"$work/debian/control"
    cd "$work"
    dpkg-shlibdeps -O "$stage"/usr/lib/snipbench/Binaries/Linux-x64/* | sed -n 's/^shlibs:Depends=//p'
)

write_changelog()
{
    local target=$stage/usr/share/doc/snipbench/changelog.Debian
    cat >"$target" <<TEXT
snipbench ($version) unstable; urgency=medium

  * Release $(release_version); the file changelog says what changed.

 -- $maintainer  $(LC_ALL=C date -u -R -d "@$SOURCE_DATE_EPOCH")
TEXT
    gzip -9n "$target"
}

write_control()
{
    mkdir -p "$stage/DEBIAN"
    cat >"$stage/DEBIAN/control" <<TEXT
Package: snipbench
Version: $version
Architecture: $architecture
Maintainer: $maintainer
Installed-Size: $(du -k -s --apparent-size "$stage/usr" | cut -f1)
Depends: $(list_dependencies)
Recommends: libsystemd0, xdg-user-dirs
Section: graphics
Priority: optional
Description: cut regions out of the screen, to the pixel
 SnipBench freezes one display, covers it with an overlay, and lets you pick
 rectangles or polygons by mouse or by keyboard, helped by a crosshair and a
 magnifier. Each selection becomes an image and a JSON file; an annotation run
 keeps the whole picture and writes down every rectangle drawn on it.
 .
 A program that starts it gets an exit code, a JSON object and the files.
 .
 The command snipbench-data checks, shows and counts what was annotated, writes
 and reads data sets in the formats COCO, YOLO and VOC, and finds a picture on
 another one.
TEXT
    (cd "$stage" && find usr -type f -print0 | sort -z | xargs -0 md5sum) >"$stage/DEBIAN/md5sums"
}

rm -rf "$work"
Scripts/stage-linux.sh "$stage/usr"
# It names the program by its path, and of this package that is known.
install -m 644 Packaging/Linux/snipbench-kwin.desktop "$stage/usr/share/applications/snipbench-kwin.desktop"
Scripts/make-sbom.py linux "$stage/usr" "$stage/usr/share/doc/snipbench/sbom.cdx.json"
write_changelog
write_control
dpkg-deb --root-owner-group -Zxz --build "$stage" "$file" >/dev/null
echo "$file"
