#!/usr/bin/env bash
# Builds the reference manual: the pages generated from the type library
# source, the error list and docs/, then HTML with MkDocs in strict mode, so
# a member without its page or any warning fails the build.
#   build-docs.sh <build folder>
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
out=$(realpath -m "$1")/docs
rm -rf "$out"
mkdir -p "$out"
/usr/bin/python3 "$root/docs/generate.py" "$out/source"
log=$out/mkdocs.log
if ! (cd "$out" && mkdocs build --strict >"$log" 2>&1) || grep -q WARNING "$log"; then
  cat "$log"
  exit 1
fi
echo "docs: $(find "$out/html/reference" -name '*.html' | wc -l) reference pages in $out/html"
