#!/usr/bin/env python3
"""Writes the files from which wixl makes the installer for Windows: its description, and the Start menu's icon.

    make-installer.py STAGE VERSION

STAGE is the folder that is installed. Both files are written beside it, and wixl has to be started there. The
installation is the user's own: below the user's folder for programs, without the rights of an administrator.
Identifiers follow from names, so that a later release knows the parts of this one.
"""
import struct
import subprocess
import sys
import uuid
from pathlib import Path
from xml.sax.saxutils import quoteattr

ROOT = Path(__file__).resolve().parent.parent
NAMES = uuid.UUID("b7b3d1a6-5f0e-4c55-9d0c-6f2f1e3a8c21")  # random, made once
KEY = r"Software\Orvik\SnipBench"
ENTRIES = (
    ("SnipBench", "", "Select regions of the screen"),
    ("SnipBench one region", "-s true", "Select one region of the screen"),
    ("SnipBench annotation", "-a true", "Draw rectangles on a picture of the screen"),
)


def make_guid(name):
    return "{" + str(uuid.uuid5(NAMES, name)).upper() + "}"


def make_id(prefix, name):
    return prefix + uuid.uuid5(NAMES, name).hex


def element(name, content="", **attributes):
    head = "".join(f" {key}={quoteattr(value)}" for key, value in attributes.items())
    return f"<{name}{head}>{content}</{name}>" if content else f"<{name}{head}/>"


def make_key(name):
    """Marks a component of a user as installed; files in a user's folder can't do that."""
    return element("RegistryValue", Root="HKCU", Key=KEY, Name=name, Type="integer", Value="1", KeyPath="yes")


def make_component(name, content, components):
    identifier = make_id("C", name)
    components.append(identifier)
    return element("Component", content + make_key(identifier), Id=identifier, Guid=make_guid(name))


def make_folder(folder, stage, components):
    """The elements of a folder's contents, and the folder's removal with the last of them."""
    relative = folder.relative_to(stage).as_posix()
    files = [path for path in sorted(folder.iterdir()) if path.is_file()]
    content = "".join(element("File", Id=make_id("F", file.relative_to(stage).as_posix()), Name=file.name,
                              Source=file.relative_to(stage.parent).as_posix()) for file in files)
    content += element("RemoveFolder", Id=make_id("R", relative), On="uninstall")
    result = make_component("folder " + relative, content, components)
    for inner in sorted(path for path in folder.iterdir() if path.is_dir()):
        result += element("Directory", make_folder(inner, stage, components),
                          Id=make_id("D", inner.relative_to(stage).as_posix()), Name=inner.name)
    return result


def make_entries(components):
    content = "".join(
        element("Shortcut", Id=make_id("S", name), Directory="STARTDIR", Name=name, Description=description,
                Target=r"[INSTALLDIR]Binaries\Windows-x64\SnipBenchStart.exe", WorkingDirectory="INSTALLDIR",
                Icon="SnipBench.ico", **({"Arguments": arguments} if arguments else {}))
        for name, arguments, description in ENTRIES)
    content += element("RemoveFolder", Id="RemoveStart", On="uninstall")
    return make_component("entries", content, components)


def make_upgrade(version):
    """Replaces an installed version unless that is newer. Windows compares only three numbers of a version, so it takes
    a release that differs only in the fourth for the same one, and replaces that as well.
    """
    major, minor, build = (int(part) for part in version.split(".")[:3])
    next_version = f"{major}.{minor}.{build + 1}"
    older = element("UpgradeVersion", Minimum="0.0.0", Maximum=next_version, Property="OLDERFOUND")
    newer = element("UpgradeVersion", Minimum=next_version, OnlyDetect="yes", Property="NEWERFOUND")
    content = element("Upgrade", older + newer, Id=make_guid("product"))
    content += element("Condition", "Installed OR NOT NEWERFOUND", Message="A newer version of SnipBench is installed.")
    return content + element("InstallExecuteSequence", element("RemoveExistingProducts", After="InstallValidate"))


def make_source(stage, version, icon):
    components = []
    own = element("Directory", make_folder(stage, stage, components), Id="INSTALLDIR", Name="SnipBench")
    # Other programs use the folder for programs too: it is only removed if it is empty.
    last = make_component("programs", element("RemoveFolder", Id="RemovePrograms", On="uninstall"), components)
    programs = element("Directory", last + own, Id="USERPROGRAMS", Name="Programs")
    tree = element("Directory", programs, Id="LocalAppDataFolder")
    tree += element("Directory", element("Directory", make_entries(components), Id="STARTDIR", Name="SnipBench"),
                    Id="ProgramMenuFolder")
    content = element("Package", InstallerVersion="500", Compressed="yes", InstallScope="perUser",
                      Description=f"SnipBench {version}", Manufacturer="Orvik")
    content += make_upgrade(version)
    content += element("Media", Id="1", Cabinet="snipbench.cab", EmbedCab="yes")
    content += element("Icon", Id="SnipBench.ico", SourceFile=icon.name)
    content += element("Property", Id="ARPPRODUCTICON", Value="SnipBench.ico")
    content += element("Property", Id="ARPNOMODIFY", Value="1")
    content += element("Directory", tree, Id="TARGETDIR", Name="SourceDir")
    content += element("Feature", "".join(element("ComponentRef", Id=name) for name in components), Id="Program",
                       Level="1", Title="SnipBench")
    product = element("Product", content, Id="*", Name="SnipBench", Language="1033", Version=version,
                      Manufacturer="Orvik", UpgradeCode=make_guid("product"))
    return '<?xml version="1.0" encoding="UTF-8"?>\n' + element(
        "Wix", product, xmlns="http://schemas.microsoft.com/wix/2006/wi") + "\n"


def make_icon():
    """The drawing in the sizes that Windows shows, each as a PNG file inside of the icon file."""
    pictures = []
    for size in (16, 24, 32, 48, 64, 256):
        pictures.append((size, subprocess.run(
            ["rsvg-convert", "--width", str(size), "--height", str(size), ROOT / "Packaging/snipbench.svg"],
            stdout=subprocess.PIPE, check=True).stdout))
    offset = 6 + 16 * len(pictures)
    table, data = struct.pack("<HHH", 0, 1, len(pictures)), b""
    for size, picture in pictures:
        table += struct.pack("<BBBBHHII", size % 256, size % 256, 0, 0, 1, 32, len(picture), offset + len(data))
        data += picture
    return table + data


def main():
    if len(sys.argv) != 3:
        sys.exit("usage: make-installer.py STAGE VERSION")
    stage, version = Path(sys.argv[1]).resolve(), sys.argv[2]
    icon = stage.parent / "SnipBench.ico"
    icon.write_bytes(make_icon())
    (stage.parent / "SnipBench.wxs").write_text(make_source(stage, version, icon), encoding="utf-8")


if __name__ == "__main__":
    main()
