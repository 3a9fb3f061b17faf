#!/usr/bin/env bash
# Runs one Qt Test program under Wine. Its results come through a file: Wine loses what is printed when a program crashes.
#
#   run_test.sh PROGRAM ARGUMENTS...
set -uo pipefail

results=$(mktemp --suffix .txt)
QT_QPA_PLATFORM=windows wine "$@" -o "Z:${results//\//\\},txt"
status=$?
tr -d '\r' <"$results"
rm -f "$results"
exit "$status"
