#!/usr/bin/env python3
"""Runs the checks that need no build, one line each.

    run_all.py [CHECKOUT]
"""
import subprocess
import sys
from pathlib import Path

CHECKS = ("include_edges", "release_calls", "locale_keys", "manifest", "wording")


def main():
    folder = Path(__file__).parent
    bad = 0
    for check in CHECKS:
        code = subprocess.run([sys.executable, folder / f"{check}.py", *sys.argv[1:]]).returncode
        print(f"{check}: {'FAILED' if code else 'good'}", flush=True)
        bad += code != 0
    return 1 if bad else 0


sys.exit(main())
