"""encode and decode against the engine's EncodeBuffer/DecodeBuffer and the
tools users know: coreutils base64 and basenc, sharutils, uudeview."""
import base64
import os
import re
import zlib

from tool_support import ENGINE, ToolTest, random_bytes, run, shell

DATA_ENCODINGS = {"base64": 1, "quoted-printable": 2, "url": 3, "base58": 6, "base32": 7,
                  "base85": 8, "z85": 9}
BLOCK = 1 << 20
COMPRESS = 65536
WRAP = 131072


class Base64(ToolTest):
    def test_encode_equals_base64_w0(self):
        for length in (0, 1, 2, 3, 4, 57, 1000, BLOCK - 1, BLOCK, BLOCK + 1, 3 * BLOCK + 2):
            data = random_bytes(length, length)
            self.write("in", data)
            _, out, _ = run(["encode", "--encoding", "base64", self.path("in")])
            self.assertEqual(out, shell("base64 -w0 " + self.path("in")), length)

    def test_decode_reads_base64_lines(self):
        data = random_bytes(200000, 7)
        wrapped = shell("base64", data)  # 76-column LF lines
        _, out, _ = run(["decode"], wrapped)
        self.assertEqual(out, data)

    def test_wrapped_stream_equals_encode_buffer(self):
        for length in (0, 1, 53, 54, 55, 108, BLOCK - 2, BLOCK + 5, 2 * BLOCK + 1):
            data = random_bytes(length, length + 1)
            _, out, _ = run(["encode", "--wrap"], data)
            self.assertEqual(out, ENGINE.encode(data, 1 | WRAP), length)
            _, back, _ = run(["decode"], out)
            self.assertEqual(back, data, length)

    def test_decode_stream_equals_decode_buffer(self):
        # Padding and a zero byte end the text; stray characters between
        # groups are passed over, even across the tool's 1 MiB blocks.
        text = base64.b64encode(random_bytes(3 * BLOCK // 4 + 300, 3))
        cases = [text, text[:BLOCK - 4] + b"\r\n\t !-" + text[BLOCK - 4:],
                 text[:BLOCK - 2] + b"\r\n\t " + text[BLOCK - 2:],
                 text[:BLOCK - 2] + b"!" + text[BLOCK - 2:],
                 text[:1000] + b"=" + text[1000:], text[:BLOCK + 8] + b"\0" + text[BLOCK + 8:],
                 b"QUJD" * 10 + b"=junk", b"", b"Q", b"QU", b"QUI"]
        self.assertIsNone(ENGINE.decode(cases[3] + b"\0", 1))  # "!" inside a group
        for case in cases:
            expected = ENGINE.decode(case + b"\0", 1)
            if expected is None:
                self.assertFails(["decode"], case, code=13)
                continue
            _, out, _ = run(["decode"], case)
            self.assertEqual(out, expected, case[:20])

    def test_damage_inside_a_group_fails_and_writes_nothing(self):
        text = base64.b64encode(random_bytes(3 * BLOCK, 4))
        damaged = text[:2 * BLOCK + 1] + b"*" + text[2 * BLOCK + 1:]
        self.assertFails(["decode"], damaged, code=13, names="standard input")
        self.write("out", b"keep me")
        self.write("bad.b64", damaged)
        self.assertFails(["decode", "-o", self.path("out"), self.path("bad.b64")], code=13,
                         names=self.path("bad.b64"))
        self.assertEqual(self.read("out"), b"keep me")
        self.assertEqual(sorted(os.listdir(self.folder.name)), ["bad.b64", "out"])


class DataForms(ToolTest):
    def test_every_data_encoding_equals_the_engine(self):
        for name, number in DATA_ENCODINGS.items():
            for length in (0, 1, 4, 5, 64, 1001, 40000):
                if name == "z85" and length % 4:
                    continue
                data = random_bytes(length, number * 100 + length)
                expected = ENGINE.encode(data, number)
                if expected is None:  # the engine refuses it (Base85 of nothing)
                    self.assertFails(["encode", "-d", "-e", name], data)
                    continue
                _, text, _ = run(["encode", "-d", "-e", name], data)
                self.assertEqual(text, expected, (name, length))
                _, back, _ = run(["decode", "-d", "-e", name], text)
                self.assertEqual(back, data, (name, length))

    def test_compressed_data_forms_equal_the_engine(self):
        data = b"compressible text " * 5000
        for name, number in DATA_ENCODINGS.items():
            _, text, _ = run(["encode", "-d", "-c", "-e", name], data)
            self.assertEqual(text, ENGINE.encode(data, number | COMPRESS), name)
            _, back, _ = run(["decode", "-d", "-c", "-e", name], text)
            self.assertEqual(back, data, name)
        # The stream inside is a zlib stream.
        _, text, _ = run(["encode", "-c"], data)
        self.assertEqual(zlib.decompress(base64.b64decode(text)), data)

    def test_wrapped_data_forms_equal_the_engine(self):
        data = random_bytes(5000, 11)
        for name in ("base64", "base32", "quoted-printable"):
            number = DATA_ENCODINGS[name]
            _, text, _ = run(["encode", "-d", "-w", "-e", name], data)
            self.assertEqual(text, ENGINE.encode(data, number | WRAP), name)

    def test_base32_data_form_equals_basenc(self):
        data = random_bytes(12345, 5)
        _, text, _ = run(["encode", "-d", "-e", "base32"], data)
        self.assertEqual(text, shell("basenc --base32 -w0", data))
        _, back, _ = run(["decode", "-d", "-e", "base32"], shell("basenc --base32", data))
        self.assertEqual(back, data)

    def test_utf8_and_utf7_take_utf16le(self):
        text = "Grüße, 世界 + 🙂"
        wide = text.encode("utf-16-le")
        _, out, _ = run(["encode", "-e", "utf8"], wide)
        self.assertEqual(out, text.encode("utf-8"))
        _, back, _ = run(["decode", "-e", "utf-8"], out)
        self.assertEqual(back, wide)
        _, seven, _ = run(["encode", "-e", "utf7"], wide)
        self.assertEqual(seven, ENGINE.encode(wide, 4, units=len(wide) // 2))
        self.assertEqual(seven.decode("utf-7"), text)
        _, back, _ = run(["decode", "-e", "utf7"], seven)
        self.assertEqual(back, wide)

    def test_odd_utf16_input_fails(self):
        self.assertFails(["encode", "-e", "utf8"], b"abc", code=13)

    def test_invalid_utf8_fails(self):
        err = self.assertFails(["decode", "-e", "utf8"], b"ok \xff")
        self.assertIn("(code 1113)", err)

    def test_z85_needs_whole_groups(self):
        self.assertFails(["encode", "-e", "z85"], b"abc")


class FileForms(ToolTest):
    def test_uuencode_is_read_by_uudecode(self):
        data = random_bytes(100000, 1)
        self.write("photo one.jpg", data)
        run(["encode", "-e", "uu", "-o", self.path("x.uu"), self.path("photo one.jpg")])
        self.assertTrue(self.read("x.uu").startswith(b"begin 644 photo one.jpg"))
        shell("cd %s && uudecode -o back x.uu" % self.folder.name)
        self.assertEqual(self.read("back"), data)

    def test_uudecode_reads_uuencode(self):
        data = random_bytes(54321, 2)
        encoded = shell("uuencode data", data)
        _, out, _ = run(["decode", "-e", "uuencode"], encoded)
        self.assertEqual(out, data)

    def test_yenc_is_read_by_uudeview(self):
        data = random_bytes(300000, 3)
        self.write("data.bin", data)
        run(["encode", "-e", "yenc", "-o", self.path("data.yenc"), self.path("data.bin")])
        os.mkdir(self.path("out"))
        shell("uudeview -i -q -p %s %s" % (self.path("out"), self.path("data.yenc")))
        with open(self.path("out/data.bin"), "rb") as f:
            self.assertEqual(f.read(), data)
        _, back, _ = run(["decode", "-e", "yenc", self.path("data.yenc")])
        self.assertEqual(back, data)

    def test_standard_input_gets_the_given_name(self):
        _, out, _ = run(["encode", "-e", "yenc", "--name", "notes 1.txt"], b"hello")
        self.assertTrue(out.startswith(b"=ybegin line=128 size=5 name=notes_1.txt\r\n"), out)
        _, out, _ = run(["encode", "-e", "uu"], b"hello")
        self.assertTrue(out.startswith(b"begin 644 stdin\r\n"), out)

    def test_file_forms_round_trip(self):
        data = random_bytes(70000, 9)
        for name in ("quoted-printable", "base58", "base32", "base85", "uuencode", "yenc"):
            for compress in ([], ["-c"]):
                _, text, _ = run(["encode", "-e", name] + compress, data)
                _, back, _ = run(["decode", "-e", name] + compress, text)
                self.assertEqual(back, data, (name, compress))

    def test_base32_file_form_has_crlf_lines_of_72(self):
        _, text, _ = run(["encode", "-e", "base32"], random_bytes(1000, 1))
        lines = text.split(b"\r\n")
        self.assertEqual(len(lines[0]), 72)
        self.assertEqual(base64.b32decode(b"".join(lines)), random_bytes(1000, 1))

    def test_corrupt_yenc_fails_without_output(self):
        data = random_bytes(5000, 8)
        _, text, _ = run(["encode", "-e", "yenc"], data)
        crc = re.search(rb"crc32=([0-9a-f]{8})", text).group(1)
        broken = text.replace(b"crc32=" + crc, b"crc32=%08x" % (int(crc, 16) ^ 1))
        self.write("bad.yenc", broken)
        self.assertFails(["decode", "-e", "yenc", "-o", self.path("out"), self.path("bad.yenc")],
                         names=self.path("bad.yenc"))
        self.assertFalse(os.path.exists(self.path("out")))


class Usage(ToolTest):
    def test_forms_that_do_not_exist_are_refused(self):
        for args in (["encode", "-d", "-e", "yenc"], ["encode", "-w", "-e", "url"],
                     ["encode", "-w", "-e", "base32"], ["encode", "--name", "x"],
                     ["encode", "-e", "base99"]):
            status, out, err = run(args, b"x", check=False)
            self.assertEqual(status, 2, args)
            self.assertEqual(out, b"")
            self.assertTrue(err.startswith("fileencoder: "), err)
