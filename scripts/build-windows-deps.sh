#!/usr/bin/env bash
# Builds static bzip2 and liblzma for one Windows target from Debian's source
# packages (no mingw build of either is packaged).
#   build-windows-deps.sh <x64|x86> <prefix>
# Installs lib/libbz2.a, lib/liblzma.a and their headers under <prefix>; the
# downloaded sources are kept beside it and reused.
set -euo pipefail

arch=$1
prefix=$(realpath -m "$2")
here=$(cd "$(dirname "$0")" && pwd)
case "$arch" in
  x64) triple=x86_64-w64-mingw32 ;;
  x86) triple=i686-w64-mingw32 ;;
  *) echo "unknown target $arch" >&2; exit 2 ;;
esac
if [ -f "$prefix/lib/libbz2.a" ] && [ -f "$prefix/lib/liblzma.a" ]; then
  exit 0
fi

sources=$(dirname "$prefix")/sources
mkdir -p "$sources" "$prefix/lib" "$prefix/include"
if ! ls -d "$sources"/bzip2-*/ >/dev/null 2>&1 || ! ls -d "$sources"/xz-utils-*/ >/dev/null 2>&1; then
  (cd "$sources" && apt-get source -q bzip2 xz-utils >/dev/null)
fi
bzip2_src=$(ls -d "$sources"/bzip2-*/ | head -n 1)
xz_src=$(ls -d "$sources"/xz-utils-*/ | head -n 1)

work=$prefix/work
rm -rf "$work" && mkdir -p "$work/bzip2"
for f in blocksort huffman crctable randtable compress decompress bzlib; do
  "$triple-gcc" -O2 -D_FILE_OFFSET_BITS=64 -c "$bzip2_src/$f.c" -o "$work/bzip2/$f.o"
done
"$triple-ar" rcs "$prefix/lib/libbz2.a" "$work"/bzip2/*.o
cp "$bzip2_src/bzlib.h" "$prefix/include/"

cmake -S "$xz_src" -B "$work/xz" -G Ninja \
  -DCMAKE_TOOLCHAIN_FILE="$here/../cmake/mingw-$arch.cmake" \
  -DCMAKE_BUILD_TYPE=Release -DBUILD_SHARED_LIBS=OFF \
  -DCMAKE_INSTALL_PREFIX="$prefix" >/dev/null
cmake --build "$work/xz" --target liblzma >/dev/null
cp "$work/xz/liblzma.a" "$prefix/lib/"
cp -r "$xz_src/src/liblzma/api/lzma" "$xz_src/src/liblzma/api/lzma.h" "$prefix/include/"
rm -rf "$work"
