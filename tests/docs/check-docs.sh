#!/usr/bin/env bash
# Checks the built manual (make docs): a page for every property, method and
# event that the type library source declares, the generated tables, and a
# build without warnings. Prints one line per check and a summary line.
#   check-docs.sh <build folder>
set -uo pipefail
root=$(cd "$(dirname "$0")/../.." && pwd)
html=$1/docs/html
passed=0 failed=0
check() {
  if eval "$2"; then
    echo "ok     $1"
    passed=$((passed + 1))
  else
    echo "FAILED $1"
    failed=$((failed + 1))
  fi
}
members=$(grep -oE '(HRESULT|void) +[A-Za-z0-9_]+\(' "$root/encode/ocx/file_encoder.idl" |
  awk '{ sub(/\(/, "", $2); print $2 }' | sort -u)
for member in $members; do
  check "page for $member" "grep -q 'Dispatch id' '$html/reference/$member.html'"
done
codes=$(grep -c '^FE_ERROR_CODE' "$root/encode/engine/include/file_encoder_errors.inc")
check "every error code listed ($codes)" \
  "[ \$(grep -o '<td><code>ovError[A-Za-z0-9]*</code></td>' '$html/reference/errors.html' | sort -u | wc -l) -eq $codes ]"
check "the constants page lists fileCompareSHA256" "grep -q fileCompareSHA256 '$html/reference/constants.html'"
check "no warnings from MkDocs" "! grep -q WARNING '$1/docs/mkdocs.log'"
echo "$passed passed, $failed failed"
[ "$failed" -eq 0 ]
