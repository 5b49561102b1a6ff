#!/bin/sh
# Runs one Windows program in the prefix that the caller prepared (scripts/wine-prefix).
: "${WINEPREFIX:?set WINEPREFIX}"
export WINEDEBUG="${WINEDEBUG:--all}" LC_ALL=C.UTF-8
exec wine "$@"
