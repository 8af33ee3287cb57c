#!/usr/bin/env bash
# Runs a Windows program under Wine and gives back its exit code: run_under_wine.sh PROGRAM.exe [ARGUMENT…]
# The Wine prefix stands beside the program, so nothing outside the build folder is touched.
set -eu

export WINEPREFIX="${WINEPREFIX:-$(dirname "$(realpath "$1")")/wine-prefix}"
export WINEDEBUG="${WINEDEBUG:--all}"
export WINEDLLOVERRIDES="${WINEDLLOVERRIDES:-mscoree,mshtml,winemenubuilder.exe=}" # no installer asks anything

if [ -n "${DISPLAY:-}" ]; then
    exec wine "$@"
fi
exec xvfb-run --auto-servernum --server-args="-screen 0 1280x1024x24" wine "$@"
