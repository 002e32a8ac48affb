#!/usr/bin/env bash
# Runs one script suite with cscript under Wine and fails unless it ran to
# its "N passed, N failed" line with no failures (cscript under Wine exits 0
# and prints nothing on an uncaught script error).
#   run-script.sh <suite.vbs|suite.js> <work directory>
set -uo pipefail
here=$(cd "$(dirname "$0")" && pwd)
suite=$1
work=$2
mkdir -p "$work"
name=$(basename "$suite")
if [ "${name##*.}" = vbs ]; then
  cat "$here/scripts/test_lib.vbs" "$suite" >"$work/$name"
else
  cp "$suite" "$work/$name"
fi
output=$("$here/../../scripts/wine-run.sh" cscript //nologo "$(winepath -w "$work/$name" 2>/dev/null)" 2>&1 | tr -d '\r')
status=$?
printf '%s\n' "$output"
summary=$(printf '%s\n' "$output" | grep -E '^[0-9]+ passed, [0-9]+ failed$' | tail -n 1)
if [ -z "$summary" ]; then
  echo "$name: no summary line: the script stopped early"
  exit 1
fi
[ "$status" -eq 0 ] && [[ "$summary" == *" 0 failed" ]]
