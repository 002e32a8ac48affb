#!/usr/bin/python3
"""Writes the seed corpora of the file fuzz targets under tests/fuzz/corpus/,
made with Python's own codecs so that short runs start from structure.
Each seed is the target's selector bytes followed by a valid file."""
import base64
import binascii
import bz2
import lzma
import os
import quopri
import random
import zlib

HERE = os.path.dirname(os.path.abspath(__file__))


def write(target, name, data):
    folder = os.path.join(HERE, "corpus", target)
    os.makedirs(folder, exist_ok=True)
    with open(os.path.join(folder, name), "wb") as f:
        f.write(data)


def crc(data):
    return binascii.crc32(data) & 0xFFFFFFFF


def yenc(data, name="seed.bin"):
    out = bytearray(b"=ybegin line=128 size=%d name=%s\r\n" % (len(data), name.encode()))
    line = bytearray()
    for i, b in enumerate(data):
        c = (b + 42) % 256
        if c in (0, 9, 10, 13, 46, 61):
            line += bytes([61, (c + 64) % 256])
        else:
            line.append(c)
        if len(line) >= 128 or i == len(data) - 1:
            out += line + b"\r\n"
            line = bytearray()
    return bytes(out + b"=yend size=%d crc32=%08x \r\n" % (len(data), crc(data)))


def yenc_parts(data, split):
    out = bytearray()
    parts = [(0, split), (split, len(data))]
    for number, (begin, end) in enumerate(parts, 1):
        piece = data[begin:end]
        body = yenc(piece).split(b"\r\n", 1)[1].rsplit(b"=yend", 1)[0]
        out += b"=ybegin part=%d line=128 size=%d name=seed.bin\r\n" % (number, len(data))
        out += b"=ypart begin=%d end=%d\r\n" % (begin + 1, end)
        out += body + b"=yend size=%d part=%d pcrc32=%08x\r\n" % (len(piece), number, crc(piece))
    return bytes(out)


def uu(data):
    out = bytearray(b"begin 644 seed.bin\r\n")
    for i in range(0, len(data), 45):
        out += binascii.b2a_uu(data[i:i + 45], backtick=True).replace(b"\n", b"\r\n")
    return bytes(out + b"`\r\nend\r\n")


def main():
    rng = random.Random(1)
    samples = [b"", b"a", b"hello world\r\n" * 20, bytes(range(256)) * 3,
               bytes(rng.randrange(256) for _ in range(1500))]
    # decode_file_fuzz: selector (encoding index: 2 3 4 6 7 8), no changes.
    for n, data in enumerate(samples):
        write("decode_file_fuzz", "qp%d" % n, b"\x00\x00" + quopri.encodestring(data))
        write("decode_file_fuzz", "uu%d" % n, b"\x01\x00" + uu(data))
        write("decode_file_fuzz", "yenc%d" % n, b"\x02\x00" + yenc(data))
        write("decode_file_fuzz", "b32_%d" % n, b"\x04\x00" + base64.b32encode(data))
        write("decode_file_fuzz", "a85_%d" % n, b"\x05\x00" + base64.a85encode(data))
        write("decode_file_fuzz", "valid%d" % n, bytes([0x80 + n % 6, 0]) + data)
    write("decode_file_fuzz", "yenc_parts", b"\x02\x00" + yenc_parts(samples[4], 700))
    # expand_file_fuzz: type (0 detect, 1 Deflate, 2 bzip2, 3 LZMA).
    for n, data in enumerate(samples[1:], 1):
        write("expand_file_fuzz", "zlib%d" % n, b"\x01" + zlib.compress(data, 9))
        write("expand_file_fuzz", "bz2_%d" % n, b"\x02" + bz2.compress(data, 9))
        alone = lzma.compress(data, format=lzma.FORMAT_ALONE,
                              filters=[{"id": lzma.FILTER_LZMA1, "dict_size": 1 << 24}])
        write("expand_file_fuzz", "lzma%d" % n, b"\x03" + alone)
        write("expand_file_fuzz", "detect%d" % n, b"\x00" + zlib.compress(data))


if __name__ == "__main__":
    main()
