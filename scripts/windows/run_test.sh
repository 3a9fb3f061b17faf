#!/usr/bin/env bash
# Runs one Qt Test program under Wine. Its results come through a file: Wine loses what is printed when a program crashes.
#
#   run_test.sh PROGRAM ARGUMENTS...
set -uo pipefail

results=$(mktemp --suffix .txt)
# OBS brings its own style on every system, one that is made of this. Wine keeps variables of Qt from its programs, but for
# those that say that they are for it.
WINEQT_STYLE_OVERRIDE=fusion wine "$@" -o "Z:${results//\//\\},txt"
status=$?
tr -d '\r' <"$results"
rm -f "$results"
exit "$status"
