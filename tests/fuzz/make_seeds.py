#!/usr/bin/python3
"""Writes the seed corpora of every fuzz target under tests/fuzz/corpus/,
made with Python's own codecs so that short runs start from structure.
Each seed is the target's choice bytes followed by a valid text or file."""
import base64
import binascii
import bz2
import hashlib
import lzma
import os
import quopri
import random
import struct
import urllib.parse
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


Z85 = b"0123456789abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ.-:+=^!/*?&<>()[]{}@%$#"


def z85(data):
    out = bytearray()
    for i in range(0, len(data) - len(data) % 4, 4):
        value = struct.unpack(">I", data[i:i + 4])[0]
        out += bytes(Z85[value // 85 ** k % 85] for k in range(4, -1, -1))
    return bytes(out)


def uu(data):
    out = bytearray(b"begin 644 seed.bin\r\n")
    for i in range(0, len(data), 45):
        out += binascii.b2a_uu(data[i:i + 45], backtick=True).replace(b"\n", b"\r\n")
    return bytes(out + b"`\r\nend\r\n")


B58 = b"123456789ABCDEFGHJKLMNPQRSTUVWXYZabcdefghijkmnopqrstuvwxyz"
Z85 = (b"0123456789abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ"
       b".-:+=^!/*?&<>()[]{}@%$#")


def base58(data):
    number = int.from_bytes(data, "big")
    out = bytearray()
    while number:
        number, digit = divmod(number, 58)
        out.append(B58[digit])
    zeros = len(data) - len(data.lstrip(b"\0"))
    return bytes(B58[0:1] * zeros + out[::-1])


def z85(data):
    data = data[:len(data) - len(data) % 4]
    out = bytearray()
    for (word,) in struct.iter_unpack(">I", data):
        out += bytes(Z85[word // 85 ** k % 85] for k in range(4, -1, -1))
    return bytes(out)


def data_texts(data):
    """Encoding number and text of each data encoding, as a decoder meets it."""
    return [(1, base64.b64encode(data)), (1, base64.encodebytes(data).replace(b"\n", b"\r\n")),
            (2, quopri.encodestring(data)), (3, urllib.parse.quote_from_bytes(data).encode()),
            (4, data.decode("latin-1").encode("utf-7")), (5, data.decode("latin-1").encode()),
            (6, base58(data[:64])), (7, base64.b32encode(data)), (8, base64.a85encode(data)),
            (9, z85(data))]


def data_seeds(samples):
    rng = random.Random(2)
    for n, data in enumerate(samples):
        size = struct.pack("<H", len(data) * 2 + 16)
        write("base64_one_shot_fuzz", "b64_%d" % n, size + base64.b64encode(data))
        write("base64_one_shot_fuzz", "wrapped%d" % n,
              size + base64.encodebytes(data).replace(b"\n", b"\r\n"))
        for index, (encoding, text) in enumerate(data_texts(data)):
            write("decode_buffer_fuzz", "e%d_%d_%d" % (encoding, index, n),
                  bytes([encoding, 0]) + size + text)
        packed = zlib.compress(data, 9)
        write("decode_buffer_fuzz", "deflated%d" % n,
              bytes([1, 1]) + size + base64.b64encode(packed))
        write("expand_data_fuzz", "raw%d" % n, zlib.compress(data)[2:-4] if data else b"\x03\x00")
        write("expand_data_fuzz", "zlib%d" % n, zlib.compress(data))
        # inflate_differential: room mode (bit 0 near the stream's size), size, stream.
        for level in (0, 1, 9):
            packed = zlib.compress(data, level)
            write("inflate_differential_fuzz", "l%d_%d" % (level, n),
                  bytes([1, n, 0]) + packed)
            write("inflate_differential_fuzz", "cut%d_%d" % (level, n),
                  bytes([0]) + struct.pack("<H", len(data)) + packed[:len(packed) * 2 // 3])
        for choice in range(0, 256, 37):
            write("encode_bounds_fuzz", "c%d_%d" % (choice, n),
                  bytes([choice]) + size + data[:1024])
            write("round_trip_fuzz", "c%d_%d" % (choice, n), bytes([choice]) + data[:2048])
        # base64_kernels: mode (bit 0 decode, bit 1 wrap), split seed, data.
        seed = struct.pack("<H", n)
        write("base64_kernels_fuzz", "encode%d" % n, bytes([2 * (n % 2)]) + seed + data[:4096])
        wrapped = base64.encodebytes(data[:4096]).replace(b"\n", b"\r\n")
        write("base64_kernels_fuzz", "decode%d" % n, bytes([1]) + seed + wrapped)
        write("base64_kernels_fuzz", "plain%d" % n, bytes([1]) + seed + base64.b64encode(data[:4096]))
        # base32_kernels: mode (bit 0 decode, bit 1 wrap), split seed, data.
        write("base32_kernels_fuzz", "encode%d" % n, bytes([2 * (n % 2)]) + seed + data[:4096])
        b32 = base64.b32encode(data[:4096])
        lines = b"\r\n".join(b32[i:i + 72] for i in range(0, len(b32), 72))
        write("base32_kernels_fuzz", "decode%d" % n, bytes([1]) + seed + lines)
        write("base32_kernels_fuzz", "lower%d" % n, bytes([1]) + seed + b32.lower())
        # base85_kernels: split seed, text (with zero groups as 'z').
        write("base85_kernels_fuzz", "text%d" % n, seed + base64.a85encode(data[:4096]))
        write("base85_kernels_fuzz", "zeros%d" % n,
              seed + base64.a85encode(data[:2048] + bytes(64) + data[2048:4096]))
        # url_kernels: mode (bit 0 decode), capacity seed, data or text.
        write("url_kernels_fuzz", "encode%d" % n, bytes([0]) + seed + data[:4096])
        quoted = urllib.parse.quote_from_bytes(data[:4096], safe="").encode()
        write("url_kernels_fuzz", "decode%d" % n, bytes([1]) + seed + quoted)
        # z85_kernels: mode (bit 0 decode), capacity seed, data or text.
        write("z85_kernels_fuzz", "encode%d" % n, bytes([0]) + seed + data[:4096])
        write("z85_kernels_fuzz", "decode%d" % n, bytes([1]) + seed + z85(data[:4096]))
        # qp_kernels: mode (bit 0 encode, bit 1 wrap), split seed, text or data.
        write("qp_kernels_fuzz", "plain%d" % n, bytes([0]) + seed + binascii.b2a_qp(data[:4096]))
        soft = quopri.encodestring(data[:4096]).replace(b"\n", b"\r\n")
        write("qp_kernels_fuzz", "lines%d" % n, bytes([0]) + seed + soft)
        write("qp_kernels_fuzz", "encode%d" % n, bytes([1 + 2 * (n % 2)]) + seed + data[:4096])
        # uu_files: bit 0 cuts the block off, then body lines (LF between).
        body = b"".join(binascii.b2a_uu(data[i:i + 45]) for i in range(0, min(len(data), 2000), 45))
        write("uu_files_fuzz", "whole%d" % n, bytes([0]) + body)
        write("uu_files_fuzz", "cut%d" % n, bytes([1]) + body)
        # yenc_kernels: mode (bit 0 decode), starting column, split seed, data.
        write("yenc_kernels_fuzz", "encode%d" % n, bytes([0, n * 37 % 128]) + seed + data[:4096])
        write("yenc_kernels_fuzz", "decode%d" % n, bytes([1, 0]) + seed + yenc(data[:4096]))
        # chunked_decoders: decoder, text length (at most 255), text, piece sizes.
        for decoder, text in enumerate((base64.b64encode(data[:180]),
                                        base64.b32encode(data[:150]),
                                        quopri.encodestring(data[:80])[:255])):
            pieces = bytes(rng.randrange(64) for _ in range(32))
            write("chunked_decoders_fuzz", "d%d_%d" % (decoder, n),
                  bytes([decoder, len(text)]) + text + pieces)


def compare_seeds():
    """Options (three bytes), which text is given, then the text."""
    abc = b"abc"
    digests = [hashlib.md5(abc).hexdigest(), hashlib.sha1(abc).hexdigest(),
               hashlib.sha256(abc).hexdigest()]
    for n, digest in enumerate(digests):
        for m, text in enumerate([digest, "0x" + digest.upper(), "&H" + digest, "  " + digest,
                                  digest[:-1]]):
            write("compare_files_fuzz", "d%d_%d" % (n, m), b"\x00\x00\x00\x01" + text.encode())
    for options in (1, 2, 4, 7, 256, 512, 1024, 1280):
        write("compare_files_fuzz", "o%d" % options,
              struct.pack("<H", options) + b"\x00\x05" + digests[2].encode())
    write("compare_files_fuzz", "path", b"\x01\x00\x00\x02%TMP%/x. ")


def utf8_seeds():
    texts = ["plain ASCII", "caf\u00e9 \u20ac \U0001F600", "\ufeffwith a mark", "\u65e5\u672c\u8a9e"]
    for n, text in enumerate(texts):
        write("utf8_validate_fuzz", "valid%d" % n, text.encode())
    for n, bad in enumerate([b"\xc0\xaf", b"\xed\xa0\x80", b"\xf4\x90\x80\x80", b"\xe2\x82",
                             b"A\x00\xff", b"\xef\xbb\xbf"]):
        write("utf8_validate_fuzz", "edge%d" % n, bad)


def text_filter_seeds():
    pages = [b"<html><head><title>T</title><style>p{}</style></head><body><h1>Head</h1>"
             b"<p>One &amp; two &copy; &#x41;&#65;</p><ol><li>a</li><li>b</li></ol>"
             b"<a href='https://u:p@example.com/x'>link</a><img alt='pic' src=x>"
             b"<pre>  keep\n\n\nthis</pre><!-- note --><dl><dt>t</dt><dd>d</dd></dl></body></html>",
             b"<script>if (a<b) x</script>after", b"Smith & Sons"]
    for n, page in enumerate(pages):
        write("html_filter_fuzz", "page%d" % n, b"\x20" + page)
    docs = ["# Title\n\nText with **bold**, _it_, snake_case and `code`.\n\n1) one\n- two\n",
            "> quote\n\n---\n\n[site](https://example.com) <https://x.y> ![i](p.png)\n",
            "| a | b |\n|:--|--:|\n| 1 | 2 |\n\n```py\nx = 1\n```\n"]
    for n, doc in enumerate(docs):
        write("markdown_filter_fuzz", "doc%d" % n, b"\x20" + doc.encode())
    texts = ["\u0430pple \u00e9 \ufb01 \U0001d400 \U0001f600", "a\tb\x0bc\x0cd \u202e\ufeff",
             " \u3000\uff21\uff22 \u2014 \u00a0"]
    for n, text in enumerate(texts):
        write("unicode_filter_fuzz", "utf8_%d" % n, text.encode())
        write("unicode_filter_fuzz", "utf16_%d" % n, text.encode("utf-16-le"))


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
    data_seeds(samples)
    compare_seeds()
    utf8_seeds()
    text_filter_seeds()


if __name__ == "__main__":
    main()
