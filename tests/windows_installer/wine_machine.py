"""A Windows machine of its own, under Wine: its files, its registry, its programs."""
import os
import shutil
import subprocess
import time
from contextlib import contextmanager
from pathlib import Path

PRISTINE = Path("/opt/windows/prefix")
DEADLINE = 300


class WineMachine:
    def __init__(self, folder):
        self.prefix = Path(folder) / "windows"
        copy_prefix(self.prefix)
        self.environment = {**os.environ, "WINEPREFIX": str(self.prefix)}
        # One server for all calls.
        subprocess.run(["wineserver", "--persistent"], env=self.environment, check=True)
        self.drive = self.prefix / "drive_c"
        self.before = files_below(self.drive).keys()
        self.folders_before = folders_below(self.drive)

    def forget_files(self):
        """Removes every file and folder that was not there in the beginning. What lies in a Temp may still be in use."""
        for name in sorted(files_below(self.drive).keys() - self.before):
            if "/Temp/" not in name:
                (self.drive / name).unlink()
        for name in sorted(folders_below(self.drive) - self.folders_before, reverse=True):
            if "/Temp/" not in name:
                (self.drive / name).rmdir()

    def shut_down(self):
        subprocess.run(["wineserver", "--kill"], env=self.environment, check=False)
        subprocess.run(["wineserver", "--wait"], env=self.environment, check=False)

    def path(self, windows):
        """Where `C:\\...` is here."""
        return self.drive.joinpath(*windows.split("\\")[1:])

    def run(self, program, *words):
        """Ends with what the program ended with. A word is never quoted, so a path with blanks may stand for itself."""
        words = " ".join(words).split(" ") if words else []
        return subprocess.run(["wine", program, *words], env=self.environment, timeout=DEADLINE,
                              stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL).returncode

    def registry(self, key):
        """The texts and numbers of a key of the machine, as texts; nothing when there is no such key."""
        query = subprocess.run(["wine", "reg", "query", "HKLM\\" + key], env=self.environment, timeout=DEADLINE,
                               capture_output=True)
        lines = query.stdout.decode(errors="replace").splitlines() if query.returncode == 0 else []
        fields = [line.strip().split("    ", 2) for line in lines if line.startswith("    ")]
        return {field[0]: field[2] if len(field) > 2 else "" for field in fields}

    @contextmanager
    def running(self, program, *arguments):
        process = subprocess.Popen(["wine", program, *arguments], env=self.environment, stdin=subprocess.PIPE,
                                   stdout=subprocess.PIPE)
        try:
            if process.stdout.readline().strip() != b"ready":
                raise RuntimeError(f"{program} did not start")
            yield
        finally:
            process.stdin.close()
            process.wait(DEADLINE)
            process.stdout.close()


# Windows itself, 800 MB, is borrowed; nobody writes there.
def copy_prefix(prefix):
    system = PRISTINE / "drive_c/windows"
    shutil.copytree(PRISTINE, prefix, symlinks=True,
                    ignore=lambda folder, names: names if Path(folder) == system else ())
    for entry in system.iterdir():
        (prefix / "drive_c/windows" / entry.name).symlink_to(entry)
    (prefix / "drive_c/windows/temp").unlink(missing_ok=True)
    (prefix / "drive_c/windows/temp").mkdir()


def wait_until(condition):
    end = time.monotonic() + DEADLINE
    while not condition():
        if time.monotonic() > end:
            return False
        time.sleep(0.1)
    return True


def files_below(folder):
    """Relative path and content of every file; links count as what they are."""
    return {path.relative_to(folder).as_posix(): os.readlink(path) if path.is_symlink() else path.read_bytes()
            for path in folder.rglob("*") if path.is_symlink() or path.is_file()}


def folders_below(folder):
    return {path.relative_to(folder).as_posix() for path in folder.rglob("*") if path.is_dir() and not path.is_symlink()}
