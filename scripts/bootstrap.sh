#!/usr/bin/env bash
# Installs the Debian packages that building and testing need. Runs as root on
# Debian 12; does nothing when everything is already there.
set -euo pipefail

packages=(
  cmake ninja-build make g++ clang libclang-rt-14-dev clang-format
  googletest libgtest-dev libbenchmark-dev
  zlib1g-dev libbz2-dev liblzma-dev libicu-dev libssl-dev libgmp-dev libdeflate-dev m4
  mingw-w64 mingw-w64-tools libz-mingw-w64-dev libwine-dev wine wine64 wine64-tools xvfb xauth
  imagemagick
  libcli11-dev pkgconf file groff-base bash-completion debootstrap
  wixl msitools mkdocs
  dpkg-dev python3 openssl python3-base58 python3-sabyenc libisal-dev coreutils bzip2 xz-utils sharutils uudeview
)

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
done

# The Windows builds compile bzip2, liblzma, GMP and libdeflate from Debian's source packages,
# which needs a deb-src entry beside the binary one.
src_list=/etc/apt/sources.list.d/debian-src.sources
need_update=0
if ! grep -rqs '^Types:.*deb-src' /etc/apt/sources.list.d/ && ! grep -qs '^deb-src' /etc/apt/sources.list; then
  sed 's/^Types: deb$/Types: deb-src/' /etc/apt/sources.list.d/debian.sources >"$src_list"
  need_update=1
fi

if [ ${#missing[@]} -gt 0 ] || [ "$need_update" = 1 ]; then
  export DEBIAN_FRONTEND=noninteractive
  apt-get update -q
  if [ ${#missing[@]} -gt 0 ]; then
    echo "bootstrap: installing ${missing[*]}"
    apt-get install -y -q --no-install-recommends "${missing[@]}"
  fi
fi
