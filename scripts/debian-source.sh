#!/usr/bin/env bash
# Prints the unpacked tree of a Debian source package under <folder>,
# fetching it there on first use (needs the deb-src entry bootstrap.sh adds).
#   debian-source.sh <package> <folder>
set -euo pipefail
package=$1
folder=$2
mkdir -p "$folder"
if ! ls -d "$folder/$package"-*/ >/dev/null 2>&1; then
  (cd "$folder" && apt-get source -q "$package" >/dev/null 2>&1)
fi
realpath "$(ls -d "$folder/$package"-*/ | head -n 1)"
