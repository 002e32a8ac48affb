#!/usr/bin/env bash
# Builds static bzip2, liblzma, GMP and libdeflate for one Windows target
# from Debian's source packages (no mingw build of any of them is packaged).
#   build-windows-deps.sh <x64|x86> <prefix>
# Installs lib/libbz2.a, lib/liblzma.a, lib/libgmp.a, lib/libdeflate.a and
# their headers under <prefix>; the downloaded sources are kept beside it and
# reused, and a library already there is not built again.
set -euo pipefail

arch=$1
prefix=$(realpath -m "$2")
here=$(cd "$(dirname "$0")" && pwd)
case "$arch" in
  x64) triple=x86_64-w64-mingw32 ;;
  x86) triple=i686-w64-mingw32 ;;
  *) echo "unknown target $arch" >&2; exit 2 ;;
esac

sources=$(dirname "$prefix")/sources
mkdir -p "$sources" "$prefix/lib" "$prefix/include"
source_of() {
  "$here/debian-source.sh" "$1" "$sources"
}
work=$prefix/work

if [ ! -f "$prefix/lib/libbz2.a" ]; then
  bzip2_src=$(source_of bzip2)
  rm -rf "$work" && mkdir -p "$work/bzip2"
  for f in blocksort huffman crctable randtable compress decompress bzlib; do
    "$triple-gcc" -O2 -D_FILE_OFFSET_BITS=64 -c "$bzip2_src/$f.c" -o "$work/bzip2/$f.o"
  done
  "$triple-ar" rcs "$prefix/lib/libbz2.a" "$work"/bzip2/*.o
  cp "$bzip2_src/bzlib.h" "$prefix/include/"
fi

if [ ! -f "$prefix/lib/liblzma.a" ]; then
  xz_src=$(source_of xz-utils)
  
if [ ! -f "$prefix/lib/libdeflate.a" ]; then
  libdeflate_src=$(source_of libdeflate)
  rm -rf "$work" && mkdir -p "$work" && cp -r "$libdeflate_src" "$work/libdeflate"
  # Its AVX2 paths are picked at run time; mingw-w64 does not align the
  # stack for spilled 32-byte values, so every function realigns it.
  make -s -C "$work/libdeflate" libdeflatestatic.lib CC="$triple-gcc" AR="$triple-ar" \
    CFLAGS="-O2 -mstackrealign" >/dev/null
  cp "$work/libdeflate/libdeflatestatic.lib" "$prefix/lib/libdeflate.a"
  cp "$libdeflate_src/libdeflate.h" "$prefix/include/"
fi
rm -rf "$work"
  cmake -S "$xz_src" -B "$work/xz" -G Ninja \
    -DCMAKE_TOOLCHAIN_FILE="$here/../cmake/mingw-$arch.cmake" \
    -DCMAKE_BUILD_TYPE=Release -DBUILD_SHARED_LIBS=OFF \
    -DCMAKE_INSTALL_PREFIX="$prefix" >/dev/null
  cmake --build "$work/xz" --target liblzma >/dev/null
  cp "$work/xz/liblzma.a" "$prefix/lib/"
  cp -r "$xz_src/src/liblzma/api/lzma" "$xz_src/src/liblzma/api/lzma.h" "$prefix/include/"
fi

if [ ! -f "$prefix/lib/libgmp.a" ]; then
  gmp_src=$(source_of gmp)
  # Debian's source leaves the manual out but its unregenerated configure
  # still lists doc/Makefile: an empty one stands in.
  if [ ! -f "$gmp_src/doc/Makefile.in" ]; then
    mkdir -p "$gmp_src/doc"
    printf 'all install check clean distclean mostlyclean uninstall:\n\t@:\n' \
      >"$gmp_src/doc/Makefile.in"
  fi
  rm -rf "$work" && mkdir -p "$work/gmp"
  (cd "$work/gmp" &&
    "$gmp_src/configure" --host="$triple" --disable-shared --enable-static \
      --prefix="$prefix" >configure.log 2>&1 &&
    make -j"${JOBS:-2}" >make.log 2>&1 &&
    cp .libs/libgmp.a "$prefix/lib/" && cp gmp.h "$prefix/include/") ||
    { echo "GMP for $arch failed; see $work/gmp" >&2; exit 1; }
fi

if [ ! -f "$prefix/lib/libdeflate.a" ]; then
  libdeflate_src=$(source_of libdeflate)
  rm -rf "$work" && mkdir -p "$work" && cp -r "$libdeflate_src" "$work/libdeflate"
  # Its AVX2 paths are picked at run time; mingw-w64 does not align the
  # stack for spilled 32-byte values, so every function realigns it.
  make -s -C "$work/libdeflate" libdeflatestatic.lib CC="$triple-gcc" AR="$triple-ar" \
    CFLAGS="-O2 -mstackrealign" >/dev/null
  cp "$work/libdeflate/libdeflatestatic.lib" "$prefix/lib/libdeflate.a"
  cp "$libdeflate_src/libdeflate.h" "$prefix/include/"
fi
rm -rf "$work"
