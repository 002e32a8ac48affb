#!/usr/bin/env bash
# Installs the Debian packages of make deb into a clean Debian 12 root with
# apt, as a user would, and checks what they hold: the tool runs, its man page
# and completion are in place, and programs built against the installed
# fileencoder.pc and CMake package link and run there; then removes them.
#   check-package.sh <build folder> <folder of the .deb files>
# Prints one line per check and "N passed, N failed".
set -uo pipefail
build=$(realpath "$1")
debs=$(realpath "$2")
source_root=$(cd "$(dirname "$0")/../.." && pwd)
passed=0 failed=0

check() {
  local name=$1
  shift
  if "$@" >>"$build/package-check.log" 2>&1; then
    passed=$((passed + 1)); echo "ok      $name"
  else
    failed=$((failed + 1)); echo "FAILED  $name (see $build/package-check.log)"
  fi
}

# A clean minimal Debian 12 made once per build folder, copied afresh for
# every run so that each starts from nothing but the base system.
base=$build/debian12-base
root=$build/debian12-root
: >"$build/package-check.log"
if [ ! -x "$base/usr/bin/apt-get" ]; then
  mirror=$(awk '/^URIs:/ { print $2; exit }' /etc/apt/sources.list.d/debian.sources 2>/dev/null)
  rm -rf "$base"
  if ! debootstrap --variant=minbase bookworm "$base" "${mirror:-http://deb.debian.org/debian}" \
      >>"$build/package-check.log" 2>&1; then
    echo "FAILED  a clean Debian 12 root could not be made (debootstrap needs root)"
    echo "0 passed, 1 failed"
    exit 1
  fi
fi
rm -rf "$root" && cp -a "$base" "$root"
cp /etc/resolv.conf "$root/etc/resolv.conf"
mkdir -p "$root/tmp/packages" && cp "$debs"/*.deb "$root/tmp/packages/"
in_root() { chroot "$root" /usr/bin/env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root "$@"; }

install_packages() {
  in_root apt-get update -q &&
    in_root sh -c 'DEBIAN_FRONTEND=noninteractive apt-get install -y -q --no-install-recommends \
      /tmp/packages/*.deb'
}
check "apt install of the three packages into a clean Debian 12" install_packages

tool_help() { in_root fileencoder --help | grep -q '^Subcommands:' && in_root fileencoder encode --help >/dev/null; }
check "fileencoder --help" tool_help
version() {
  local expected
  expected=$(sed -n 's/^project(FileEncoder VERSION \([0-9.]*\).*/\1/p' "$source_root/CMakeLists.txt")
  [ "$(in_root fileencoder --version)" = "fileencoder $expected" ]
}
check "fileencoder --version" version
round_trip() {
  head -c 300000 /dev/urandom >"$root/tmp/data"
  in_root sh -c 'fileencoder encode -e yenc /tmp/data | fileencoder decode -e yenc |
    cmp - /tmp/data && fileencoder compress -t lzma -o /tmp/data.lzma /tmp/data &&
    fileencoder expand /tmp/data.lzma | cmp - /tmp/data &&
    [ "$(printf hello | fileencoder encode)" = aGVsbG8= ]'
}
check "the installed tool round-trips data" round_trip
check "man page installed" test -s "$root/usr/share/man/man1/fileencoder.1.gz"
check "bash completion installed" test -s "$root/usr/share/bash-completion/completions/fileencoder"
library_links() {
  [ "$(readelf -d "$root"/usr/lib/x86_64-linux-gnu/libfileencoder.so.12.* | grep -o 'SONAME.*')" = \
    "SONAME)             Library soname: [libfileencoder.so.12]" ]
}
check "library SONAME libfileencoder.so.12" library_links

# The C example built on this machine against the root's development files,
# then run inside the root against its installed library.
pkg_config_program() {
  local flags
  flags=$(PKG_CONFIG_PATH="$root/usr/lib/x86_64-linux-gnu/pkgconfig" pkg-config --cflags --libs fileencoder) &&
    gcc -std=c99 -Wall -Werror -o "$root/tmp/demo-pkg-config" "$source_root/examples/encode_demo.c" $flags &&
    in_root /tmp/demo-pkg-config >/dev/null
}
check "a program built with pkg-config fileencoder links and runs" pkg_config_program
cmake_program() {
  local work=$build/package-consumer
  rm -rf "$work" &&
    cmake -S "$source_root/tests/package/cmake_consumer" -B "$work" -DCMAKE_PREFIX_PATH="$root/usr" \
      -DDEMO_SOURCE="$source_root/examples/encode_demo.c" &&
    cmake --build "$work" && cp "$work/consumer" "$root/tmp/demo-cmake" && in_root /tmp/demo-cmake >/dev/null
}
check "a program built with find_package(FileEncoder) links and runs" cmake_program

remove_packages() {
  in_root env DEBIAN_FRONTEND=noninteractive apt-get remove -y -q fileencoder libfileencoder-dev \
    libfileencoder12 &&
    [ -z "$(find "$root/usr" -name '*fileencoder*' -print -quit)" ]
}
check "apt remove leaves no file behind" remove_packages

echo "$passed passed, $failed failed"
[ "$failed" -eq 0 ]
