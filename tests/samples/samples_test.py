"""Runs the samples in examples/ against the control registered in the build's
Wine prefix and checks what they print and write.

  samples_test.py <build folder of the Windows x64 build> <source folder>
"""
import hashlib
import pathlib
import random
import re
import subprocess
import sys
import tempfile
import unittest
import zlib
import lzma

BUILD = pathlib.Path(sys.argv[1]).resolve()
SOURCE = pathlib.Path(sys.argv[2]).resolve()
del sys.argv[1:3]
EXAMPLES = SOURCE / "examples"
WINE_RUN = SOURCE / "scripts" / "wine-run.sh"


def windows_path(path):
    return "Z:" + str(path).replace("/", "\\")


def run(*arguments):
    """Runs a Windows program (or cscript with a sample) under Wine; returns
    its exit status and standard output without CRs."""
    with tempfile.TemporaryFile() as out:
        code = subprocess.run([str(WINE_RUN), *arguments], stdout=out, stderr=subprocess.DEVNULL,
                              stdin=subprocess.DEVNULL).returncode
        out.seek(0)
        return code, out.read().decode(errors="replace").replace("\r", "")


def script(name, *arguments):
    return run("cscript", "//nologo", windows_path(EXAMPLES / name),
               *[windows_path(a) if isinstance(a, pathlib.Path) else a for a in arguments])


def yenc_reference(data, name):
    """yEnc of one file, single part, as the format defines it."""
    critical = {0, 9, 10, 13, 46, 61}
    lines, line = [], bytearray()
    for byte in data:
        c = (byte + 42) % 256
        line += bytes([61, (c + 64) % 256]) if c in critical else bytes([c])
        if len(line) >= 128:
            lines.append(bytes(line))
            line = bytearray()
    if line:
        lines.append(bytes(line))
    body = b"".join(l + b"\r\n" for l in lines)
    return (b"=ybegin line=128 size=%d name=%s\r\n" % (len(data), name.encode()) + body +
            b"=yend size=%d crc32=%08x \r\n" % (len(data), zlib.crc32(data)))


def yenc_part(data, name, part, begin, total):
    """One part of a multi-part yEnc set (begin counts from 1)."""
    single = yenc_reference(data, name).split(b"\r\n")[1:-2]
    end = begin + len(data) - 1
    return (b"=ybegin part=%d line=128 size=%d name=%s\r\n" % (part, total, name.encode()) +
            b"=ypart begin=%d end=%d\r\n" % (begin, end) +
            b"".join(l + b"\r\n" for l in single) +
            b"=yend size=%d part=%d pcrc32=%08x\r\n" % (len(data), part, zlib.crc32(data)))


def key_for(password):
    identifier = re.search(r'FE_UUID_KEY_IDENTIFIER "([0-9a-f-]{36})"',
                           (SOURCE / "encode" / "identifiers.h").read_text()).group(1)
    return hashlib.sha256(("{%s}" % identifier).encode() + password.encode()[:215]).hexdigest()


class Samples(unittest.TestCase):
    def setUp(self):
        self.work = pathlib.Path(tempfile.mkdtemp(prefix="samples-", dir=BUILD / "tests"))
        self.data = random.Random(7).randbytes(5000) + bytes(range(256)) * 4

    def test_encode_file_writes_yenc(self):
        source = self.work / "photo 1.jpg"
        source.write_bytes(self.data)
        code, output = script("vbscript/encode_file.vbs", source, self.work / "photo.yenc")
        self.assertEqual(code, 0, output)
        self.assertIn("Encoded ", output)
        self.assertEqual((self.work / "photo.yenc").read_bytes(),
                         yenc_reference(self.data, "photo_1.jpg"))

    def test_encode_file_reports_a_missing_input(self):
        code, output = script("vbscript/encode_file.vbs", self.work / "missing",
                              self.work / "out.yenc")
        self.assertEqual(code, 1)
        self.assertTrue(output.startswith("EncodeFile failed with error 2: "), output)

    def test_decode_yenc_parts_joins_and_checks_every_part(self):
        cut = 3001
        parts = [(self.data[:cut], 1, 1), (self.data[cut:], 2, cut + 1)]
        names = []
        for data, number, begin in parts:
            names.append(self.work / f"photo.{number:03}.yenc")
            names[-1].write_bytes(yenc_part(data, "photo.jpg", number, begin, len(self.data)))
        code, output = script("vbscript/decode_yenc_parts.vbs", self.work / "photo.jpg", *names)
        self.assertEqual(code, 0, output)
        self.assertIn("Decoded 2 parts into ", output)
        self.assertEqual((self.work / "photo.jpg").read_bytes(), self.data)
        # A damaged part: the control leaves no output behind.
        damaged = bytearray(names[1].read_bytes())
        damaged[200] ^= 1
        names[1].write_bytes(bytes(damaged))
        code, output = script("vbscript/decode_yenc_parts.vbs", self.work / "again.jpg", *names)
        self.assertEqual(code, 1, output)
        self.assertEqual(output, "The parts do not match their sizes or checksums: nothing decoded\n")
        self.assertFalse((self.work / "again.jpg").exists())

    def test_protect_folder_compresses_and_encrypts_each_file(self):
        folder = self.work / "reports"
        folder.mkdir()
        texts = {"a.txt": b"quarterly figures " * 500, "b.bin": self.data}
        for name, data in texts.items():
            (folder / name).write_bytes(data)
        code, output = script("vbscript/protect_folder.vbs", folder, "s3cret pass")
        self.assertEqual(code, 0, output)
        self.assertIn("2 files protected", output)
        for name, data in texts.items():
            sealed = folder / (name + ".lzma.aes")
            packed = subprocess.run(
                ["openssl", "enc", "-d", "-aes-256-cbc", "-K", key_for("s3cret pass"), "-iv",
                 "0" * 32, "-in", str(sealed)], capture_output=True, check=True).stdout
            self.assertEqual(lzma.decompress(packed, format=lzma.FORMAT_ALONE), data)
            self.assertEqual((folder / name).read_bytes(), data)

    def test_check_digest_accepts_the_right_digest_only(self):
        source = self.work / "setup.exe"
        source.write_bytes(self.data)
        digest = hashlib.sha256(self.data).hexdigest()
        code, output = script("jscript/check_digest.js", source, digest)
        self.assertEqual((code, output.endswith("setup.exe: OK\n")), (0, True), output)
        code, output = script("jscript/check_digest.js", source, digest.upper())
        self.assertEqual(code, 0, output)
        wrong = ("0" if digest[0] != "0" else "1") + digest[1:]
        code, output = script("jscript/check_digest.js", source, wrong)
        self.assertEqual(code, 1, output)
        self.assertIn("(12497)", output)

    def test_encode_text_prints_utf7_and_the_text_again(self):
        code, output = script("jscript/encode_text.js", "1+1 is two")
        self.assertEqual(code, 0, output)
        self.assertEqual(output, "UTF-7: 1+-1 is two\nBack:  1+1 is two\n")

    def test_type_library_client_round_trips_a_file(self):
        source = self.work / "input.dat"
        source.write_bytes(self.data)
        code, output = run(str(BUILD / "examples" / "cpp" / "type_library_client.exe"),
                           windows_path(source), windows_path(self.work))
        self.assertEqual(code, 0, output)
        self.assertRegex(output, r"^FileEncoder 12\.0\.0\.1: uuencoded, decoded and compared")
        self.assertEqual((self.work / "sample.copy").read_bytes(), self.data)

    def test_demo_runs_to_its_end(self):
        code, output = script("demo.vbs")
        self.assertEqual(code, 0, output)
        self.assertTrue(output.startswith("Orvane File Encoding Control 12.0.0.1\n"), output)
        self.assertIn("EncryptData/DecryptData round trip: Data methods take strings", output)


if __name__ == "__main__":
    # The summary line is what the test runner counts.
    outcome = unittest.main(verbosity=2, exit=False).result
    failures = len(outcome.failures) + len(outcome.errors)
    print(f"{outcome.testsRun - failures} passed, {failures} failed")
    sys.exit(1 if failures else 0)
