#!/usr/bin/env python3
"""The built module shows OBS seven functions, and nobody anything else.

    exports.py MODULE
"""
import subprocess
import sys

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


def main():
    module = sys.argv[1]
    listing = subprocess.run(["nm", "-D", "--defined-only", module], check=True, capture_output=True, text=True).stdout
    exported = {line.split()[-1] for line in listing.splitlines()}
    problems = [f"{module}: {name} is not exported" for name in sorted(EXPECTED - exported)]
    problems += [f"{module}: {name} is exported" for name in sorted(exported - EXPECTED)]
    report(problems)


main()
