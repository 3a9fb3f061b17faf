#!/usr/bin/env python3
"""Installing lays the module out where OBS looks for it, for one user and for the whole system.

    installed_layout.py BUILD-FOLDER DEFAULT-LAYOUT SYSTEM-LIBRARY-FOLDER
"""
import subprocess
import sys
import tempfile
from pathlib import Path

from sources import report

NAME = "quillmar-obs-plugin"
DATA = ("LICENSE", "locale/en-US.ini", "locale/fa-IR.ini", "manifest.json")


def expected(layout, library_folder):
    if layout == "user":
        return {f"{NAME}/bin/64bit/{NAME}.so", *(f"{NAME}/data/{file}" for file in DATA)}
    return {f"{library_folder}/obs-plugins/{NAME}.so", *(f"share/obs/obs-plugins/{NAME}/{file}" for file in DATA)}


def installed(build, options):
    with tempfile.TemporaryDirectory() as prefix:
        subprocess.run(["cmake", "--install", build, "--prefix", prefix, *options], check=True, stdout=subprocess.DEVNULL)
        return {path.relative_to(prefix).as_posix() for path in Path(prefix).rglob("*") if path.is_file()}


def main():
    build, default, library_folder = sys.argv[1:]
    problems = []
    for layout, options in (("user", ["--component", "user"]), ("system", ["--component", "system"]), (default, [])):
        wanted, found = expected(layout, library_folder), installed(build, options)
        problems += [f"{layout}: {path} is missing" for path in sorted(wanted - found)]
        problems += [f"{layout}: {path} does not belong there" for path in sorted(found - wanted)]
    report(problems)


main()
