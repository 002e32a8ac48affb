#!/bin/sh
# Builds the independent libraries make bench measures ours against, into
# <build>/peers. They are never linked into the product. A peer whose source
# snapshot is not on this machine is left out (the bench says so).
set -eu
out="$1/peers"
snapshots="${FE_PEERS:-$(dirname "$0")/../../shared/peers}"
mkdir -p "$out"

base64="$snapshots/aklomp-base64-bf058e5.tar.gz"
if [ ! -f "$out/aklomp-base64/lib/libbase64.o" ] && [ -f "$base64" ]; then
  rm -rf "$out/aklomp-base64"
  tar -xzf "$base64" -C "$out"
  make -s -C "$out/aklomp-base64" lib/libbase64.o \
    AVX512_CFLAGS="-mavx512vl -mavx512vbmi" AVX2_CFLAGS=-mavx2 SSSE3_CFLAGS=-mssse3 \
    SSE41_CFLAGS=-msse4.1 SSE42_CFLAGS=-msse4.2 AVX_CFLAGS=-mavx >/dev/null
fi
