#!/usr/bin/env bash
# Runs a command with a display and a Windows user of its own for the programs that it starts under Wine.
#
#   with_wine.sh COMMAND...
set -euo pipefail

readonly compiler=/usr/lib/gcc/x86_64-w64-mingw32
display_file=$(mktemp)
Xvfb -displayfd 3 -screen 0 1600x1200x24 -nolisten tcp 3>"$display_file" >/dev/null 2>&1 &
trap 'kill %1' EXIT
until [[ -s $display_file ]]; do
    kill -0 %1 || exit 1
    sleep 0.05
done
DISPLAY=:$(<"$display_file")
WINEPREFIX=$HOME/windows
cp -r /opt/windows/prefix "$WINEPREFIX"
libraries=(/opt/windows/qt/bin /opt/windows/openssl/bin "$compiler"/*-posix /usr/x86_64-w64-mingw32/lib)
WINEPATH=$(printf 'Z:%s;' "${libraries[@]//\//\\}")
export DISPLAY WINEPREFIX WINEPATH WINEDEBUG=-all WINEDLLOVERRIDES='mscoree,mshtml='
# One server for all programs, instead of one that starts and ends with each of them. What Windows runs in the background
# starts now: it stays, and would keep the output of the first test open.
wineserver --persistent
wineboot >/dev/null 2>&1 </dev/null
"$@"
