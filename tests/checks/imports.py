#!/usr/bin/env python3
"""The module for Windows needs OBS, four libraries of Qt and Windows itself, and of OBS just what is listed.

    imports.py MODULE CHECKOUT

What obs/windows lists becomes the import libraries, so a name too many there is a call that nobody makes.
"""
import re
import sys
from pathlib import Path

from portable_executable import PortableExecutable
from sources import report

OBS = ("obs.dll", "obs-frontend-api.dll")
QT = {f"qt6{name}.dll" for name in ("core", "gui", "network", "widgets")}
# Part of every Windows 10. What a compiler brings along (libstdc++, libgcc, winpthread) is none of it.
WINDOWS = re.compile(r"^(kernel32|advapi32|bcrypt|crypt32|shell32|user32|msvcrt|ucrtbase|api-ms-win-crt-[a-z0-9-]+)\.dll$")
# The runtime that OBS itself is built with and installs.
OBS_RUNTIME = re.compile(r"^(vcruntime140(_1)?|msvcp140(_[12])?)\.dll$")


def listed_for(dll, checkout):
    """The functions in the list from which the import library of `dll` is made."""
    lines = (checkout / "obs/windows" / dll).with_suffix(".def").read_text(encoding="ascii").split()
    return set(lines[lines.index("EXPORTS") + 1 :])


def main():
    module, checkout = sys.argv[1], Path(sys.argv[2])
    imported = {dll.lower(): names for dll, names in PortableExecutable(module).imports().items()}
    problems = [
        f"{module}: needs {dll}, which OBS's users need not have"
        for dll in sorted(imported)
        if dll not in QT and dll not in OBS and not WINDOWS.match(dll) and not OBS_RUNTIME.match(dll)
    ]
    for dll in OBS:
        listed, used = listed_for(dll, checkout), imported.get(dll, set())
        problems += [f"{dll}: {name} is used and not listed" for name in sorted(used - listed)]
        problems += [f"{dll}: {name} is listed and not used" for name in sorted(listed - used)]
    problems += [f"{module}: does not use {dll}" for dll in sorted(QT - set(imported))]
    report(problems)


main()
