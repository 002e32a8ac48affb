#!/usr/bin/env bash
# Runs a Windows program under Wine in the build tree's private prefix,
# creating the prefix on first use. CTest uses this as the cross-compiling
# emulator of the Windows builds.
set -euo pipefail
here=$(cd "$(dirname "$0")/.." && pwd)
export WINEPREFIX=${FE_WINEPREFIX:-$here/build/wineprefix}
export WINEDEBUG=-all
export WINEDLLOVERRIDES="mscoree,mshtml="
if [ ! -f "$WINEPREFIX/system.reg" ]; then
  mkdir -p "$WINEPREFIX"
  wineboot --init >/dev/null 2>&1
  wineserver --wait
fi
exec wine "$@"
