#!/usr/bin/env python3
"""Writes what a package contains and needs, with versions and licences, as a CycloneDX document in JSON.

    make-sbom.py linux PREFIX FILE                   the installation below PREFIX, as stage-linux.sh lays it out
    make-sbom.py windows PREFIX FILE PACKAGE=NAME... the one for Windows, into which those packages are linked

Each library that a program for Linux names is a component, with the Debian package that it comes from here. The version
of the program and the time come from CMakeLists.txt and SOURCE_DATE_EPOCH, so the same tree gives the same document.
"""
import datetime
import json
import os
import re
import subprocess
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parents[1]
# Headers that are compiled in, and descriptions of protocols that code is made of: package and name.
COMPILED_IN = {"rapidjson-dev": "RapidJSON", "libkissfft-dev": "KISS FFT", "wayland-protocols": "wayland-protocols"}


def run(*command):
    return subprocess.run(command, stdout=subprocess.PIPE, text=True, check=True,
                          env={**os.environ, "LC_ALL": "C"}).stdout


def find_version():
    text = (ROOT / "CMakeLists.txt").read_text(encoding="utf-8")
    return re.search(r"project\(SnipBench VERSION ([0-9.]+)", text).group(1)


def list_licenses(package):
    """The short names in the package's copyright file, or where to read them."""
    file = Path("/usr/share/doc") / package / "copyright"
    text = file.read_text(encoding="utf-8", errors="replace") if file.exists() else ""
    names = sorted(set(re.findall(r"^License:[ \t]*(\S.*?)[ \t]*$", text, re.MULTILINE)))
    return [{"license": {"name": name}} for name in names or [f"as in the file copyright of the package {package}"]]


def make_component(package, name, place, **properties):
    version = run("dpkg-query", "--show", "--showformat", "${Version}", package)
    shown = {"orvik:place": place, "orvik:package": package, **properties}
    return {
        "type": "library",
        "bom-ref": f"{package}/{name}",
        "name": name,
        "version": version,
        "licenses": list_licenses(package),
        "purl": f"pkg:deb/debian/{package}@{version}",
        "properties": [{"name": key, "value": value} for key, value in sorted(shown.items())],
    }


def find_package(library):
    """The package that has a file; on a merged system either of two paths may be the registered one."""
    path = Path(library).resolve()
    for candidate in (str(path), str(path).removeprefix("/usr"), "/usr" + str(path)):
        result = subprocess.run(["dpkg-query", "--search", candidate], stdout=subprocess.PIPE,
                                stderr=subprocess.DEVNULL, text=True, check=False)
        if result.returncode == 0:
            return result.stdout.split(":")[0]
    raise RuntimeError(f"{library} is in no package")


def list_needed(program):
    return re.findall(r"\(NEEDED\).*\[(.+)\]", run("readelf", "--dynamic", "--wide", program))


def list_linux(prefix):
    bundled = {path.name for path in prefix.glob("lib/snipbench/Libraries/*")}
    components = {}
    for program in sorted(prefix.glob("lib/snipbench/Binaries/Linux-x64/*")):
        # The built one still finds the libraries of this system.
        paths = dict(re.findall(r"^\s*(\S+) => (\S+)", run("ldd", ROOT / "Binaries/Linux-x64" / program.name),
                                re.MULTILINE))
        for needed in list_needed(program):
            if needed in paths and needed not in components:
                place = "in the package" if needed in bundled else "of the system"
                components[needed] = make_component(find_package(paths[needed]), needed, place)
    result = [components[name] for name in sorted(components)]
    result += [make_component(package, name, "compiled in") for package, name in sorted(COMPILED_IN.items())]
    return result


def make_font():
    """The set-up pins the font's package."""
    text = (ROOT / "Scripts/setup-linux.sh").read_text(encoding="utf-8")
    name, version = re.search(r"^font_package=(\S+)@(\S+)$", text, re.MULTILINE).groups()
    digest = re.search(r"^font_sha256=(\S+)$", text, re.MULTILINE).group(1)
    return {
        "type": "data",
        "bom-ref": "font",
        "name": "Mulish",
        "version": version,
        "licenses": [{"license": {"id": "OFL-1.1"}}],
        "purl": f"pkg:npm/{name.replace('@', '%40')}@{version}",
        "hashes": [{"alg": "SHA-256", "content": digest}],
        "properties": [{"name": "orvik:place", "value": "in the package"}],
    }


def main():
    system, prefix, file = sys.argv[1], Path(sys.argv[2]), Path(sys.argv[3])
    if system == "linux":
        components = list_linux(prefix)
    else:
        pairs = [argument.split("=", 1) for argument in sys.argv[4:]]
        components = [make_component(package, name, "linked in") for package, name in pairs]
    time = datetime.datetime.fromtimestamp(int(os.environ.get("SOURCE_DATE_EPOCH", "0")), datetime.timezone.utc)
    program = {"type": "application", "bom-ref": "snipbench", "name": "SnipBench", "version": find_version(),
               "licenses": [{"license": {"name": "as in the file LICENSE"}}]}
    components.append(make_font())
    document = {
        "bomFormat": "CycloneDX",
        "specVersion": "1.5",
        "version": 1,
        "metadata": {"timestamp": time.strftime("%Y-%m-%dT%H:%M:%SZ"), "component": program},
        "components": components,
        "dependencies": [{"ref": "snipbench", "dependsOn": [component["bom-ref"] for component in components]}],
    }
    file.parent.mkdir(parents=True, exist_ok=True)
    file.write_text(json.dumps(document, indent=4, ensure_ascii=False) + "\n", encoding="utf-8")
    file.chmod(0o644)


main()
