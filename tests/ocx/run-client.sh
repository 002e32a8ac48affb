#!/usr/bin/env bash
# Runs the C++ client tests under Wine on a virtual display and takes a
# screenshot of the About box while the client shows it.
#   run-client.sh <control_client_tests.exe> <FileEncoder.ocx> <screenshot.png>
set -uo pipefail
if [ -z "${FE_ON_VIRTUAL_DISPLAY:-}" ]; then
  export FE_ON_VIRTUAL_DISPLAY=1
  exec xvfb-run -a -s "-screen 0 1024x768x24" "$0" "$@"
fi
here=$(cd "$(dirname "$0")" && pwd)
client=$1
module=$2
screenshot=$3
signal=$(mktemp -u /tmp/fe-about-XXXXXX)
rm -f "$screenshot"

FE_CONTROL_MODULE=$(winepath -w "$module" 2>/dev/null)
FE_ABOUT_SCREENSHOT_SIGNAL=$(winepath -w "$signal" 2>/dev/null)
export FE_CONTROL_MODULE FE_ABOUT_SCREENSHOT_SIGNAL

# The client creates the signal file while the About box is up.
(for _ in $(seq 1 600); do
   if [ -e "$signal" ]; then
     import -window root "$screenshot" 2>/dev/null
     break
   fi
   sleep 0.1
 done) &
watcher=$!
"$here/../../scripts/wine-run.sh" "$client"
status=$?
wait "$watcher"
rm -f "$signal"
if [ ! -s "$screenshot" ]; then
  echo "no screenshot of the About box was taken"
  status=1
fi
exit $status
