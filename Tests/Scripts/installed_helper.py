"""An installation of the built program as the packages make it, for tests that drive it by the command `snipbench`.

A start of the program ends other runs of its name. So the executable has a name of its own here, and the installed name
is a link to it: neither a person's run nor another test's is disturbed.
"""
import os
import secrets
import shutil
import subprocess
import tempfile
from pathlib import Path

from desktop_helper import LIMIT, ROOT, Display


def give_own_name(prefix):
    """Renames the executable of an installation."""
    program = prefix / "lib/snipbench/Binaries/Linux-x64/SnipBench"
    own = program.with_name("Snip" + secrets.token_hex(4))
    program.rename(own)
    program.symlink_to(own.name)


class Installed:
    """With a display, a home and an empty working folder; `environment` finds the command on the path."""

    def __init__(self, program, size="640x480"):
        self.folder = Path(tempfile.mkdtemp())
        self.prefix = self.folder / "usr"
        binaries = self.prefix / "lib/snipbench/Binaries/Linux-x64"
        binaries.mkdir(parents=True)
        shutil.copy2(program, binaries / "SnipBench")
        give_own_name(self.prefix)
        (self.prefix / "lib/snipbench/Resources").symlink_to(ROOT / "Resources")
        (self.prefix / "bin").mkdir()
        shutil.copy2(ROOT / "Packaging/Linux/snipbench.sh", self.prefix / "bin/snipbench")
        self.home = self.folder / "home"
        self.work = self.folder / "work"
        for folder in (self.home / "Bilder", self.home / ".config", self.work):
            folder.mkdir(parents=True)
        (self.home / ".config/user-dirs.dirs").write_text('XDG_PICTURES_DIR="$HOME/Bilder"\n', encoding="utf-8")
        self.tools = self.folder / "tools"
        self.tools.mkdir()
        self.display = Display(size)
        self.environment = {**self.display.environment, "HOME": str(self.home), "LC_ALL": "C.UTF-8",
                            "TMPDIR": str(self.folder),
                            "PATH": f"{self.tools}:{self.prefix / 'bin'}:{os.environ['PATH']}"}
        self.environment.pop("XDG_CONFIG_HOME", None)

    def close(self):
        self.display.close()
        shutil.rmtree(self.folder)

    def add_tool(self, name, script):
        """A stand-in for a tool that needs hardware or a desktop which isn't here."""
        tool = self.tools / name
        tool.write_text(script, encoding="utf-8")
        tool.chmod(0o755)

    def start(self, *command, **options):
        return subprocess.Popen(command, env=self.environment, cwd=self.work, stdout=subprocess.PIPE,
                                stderr=subprocess.PIPE, encoding="utf-8", errors="replace", **options)

    def run(self, *command, drive=None):
        """(code, standard output, standard error) of a command whose overlay `drive` answers, if there is to be one."""
        with self.start(*command) as process:
            try:
                if drive:
                    self.display.wait_for_overlay()
                    drive(self.display)
                output, errors = process.communicate(timeout=LIMIT)
            except BaseException:
                process.kill()
                raise
        return process.returncode, output, errors
