#!/usr/bin/env python3
"""References and memory of OBS are given back by handles, never by a call written by hand.

    release_calls.py [CHECKOUT]
"""
import re

from sources import PRODUCT, code_only, files, line_of, report, root_from_arguments

RELEASE = re.compile(r"\b(obs_\w+_(?:release|free)|bfree)\b\s*\(")
HANDLES = "obs/obs_handles.h"


def main():
    problems = []
    for path, text in files(root_from_arguments(), PRODUCT, {".h", ".cpp"}):
        if path.as_posix() == HANDLES:
            continue
        code = code_only(text)
        for call in RELEASE.finditer(code):
            problems.append(f"{path}:{line_of(code, call.start())}: {call[1]} by hand: use a handle of {HANDLES} or obs.hpp")
    report(problems)


main()
