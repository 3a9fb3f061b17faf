#!/usr/bin/env python3
"""Counts tests in the log of a verbose CTest run.

Every function of a Qt Test program counts, and each row of its data; setting up and clearing away does not. A program
that is not a Qt Test counts as one. What is skipped has not been tested, so it counts as failed, and so does a program
that ends badly although all its functions passed (a crash, a time-out, a leak). The last line is the sum.
"""
import argparse
import re
import sys
from collections import defaultdict
from pathlib import Path

FUNCTION = re.compile(r"^(\d+): (PASS|XFAIL|FAIL!|XPASS|SKIP|BPASS|BFAIL|BXPASS|BXFAIL) *: (.*)$")
PROGRAM = re.compile(r"^ *\d+/\d+ Test +#(\d+): (\S+) \.*(.*?) +[0-9.]+ sec$")
HOUSEKEEPING = re.compile(r"::(initTestCase|cleanupTestCase)\(\)")
GOOD = {"PASS", "XFAIL"}


def totals(lines):
    """The number of passed tests and the names of failed ones."""
    passed_in = defaultdict(int)
    failed_in = defaultdict(list)
    passed, failed = 0, []
    for line in lines:
        if function := FUNCTION.match(line):
            number, outcome, name = function.groups()
            if outcome not in GOOD:
                failed_in[number].append(f"{outcome} {name}")
            elif outcome == "PASS" and not HOUSEKEEPING.search(name):
                passed_in[number] += 1
        elif program := PROGRAM.match(line):
            number, name, outcome = program.groups()
            outcome = outcome.replace("*", "").strip()
            if outcome == "Passed":
                passed += passed_in[number] or (not failed_in[number])
            else:
                passed += passed_in[number]
                failed += [f"{name}: {outcome}"] if not failed_in[number] else []
            failed += [f"{name}: {what}" for what in failed_in[number]]
    return passed, failed


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--exit-code", type=int, default=0, help="what CTest itself ended with")
    parser.add_argument("log", type=Path)
    arguments = parser.parse_args()
    passed, failed = totals(arguments.log.read_text(encoding="utf-8", errors="replace").splitlines())
    if arguments.exit_code and not failed:
        failed.append(f"CTest ended with {arguments.exit_code}: read {arguments.log}")
    if passed == 0 and not failed:
        failed.append(f"no test ran: read {arguments.log}")
    for name in failed:
        print(name)
    print(f"{passed} passed, {len(failed)} failed")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
