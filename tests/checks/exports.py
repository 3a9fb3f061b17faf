#!/usr/bin/env python3
"""The built module shows OBS seven functions, and nobody anything else.

    exports.py MODULE
"""
import subprocess
import sys

from portable_executable import PortableExecutable, is_portable_executable
from sources import report

EXPECTED = {
    "obs_module_set_pointer",
    "obs_module_ver",
    "obs_module_load",
    "obs_module_unload",
    "obs_module_set_locale",
    "obs_module_free_locale",
    "obs_module_get_string",
}


def exported_by(module):
    if is_portable_executable(module):
        return PortableExecutable(module).exports()
    listing = subprocess.run(["nm", "-D", "--defined-only", module], check=True, capture_output=True, text=True).stdout
    return {line.split()[-1] for line in listing.splitlines()}


def main():
    module = sys.argv[1]
    exported = exported_by(module)
    problems = [f"{module}: {name} is not exported" for name in sorted(EXPECTED - exported)]
    problems += [f"{module}: {name} is exported" for name in sorted(exported - EXPECTED)]
    report(problems)


main()
