"""compress, expand, encrypt, decrypt and convert: read by Python's zlib,
bzip2, xz, OpenSSL and iconv; standard streams; every failure path leaves
no output."""
import hashlib
import os
import pty
import re
import signal
import stat
import subprocess
import time
import zlib

from tool_support import SOURCE, ToolTest, random_bytes, run, shell


def key_identifier():
    """The identifier whose text starts every key string, as the product
    defines it."""
    with open(os.path.join(SOURCE, "encode", "identifiers.h"), encoding="utf-8") as f:
        return re.search(r'FE_UUID_KEY_IDENTIFIER "([0-9a-f-]{36})"', f.read()).group(1)


def documented_key(password):
    text = ("{%s}" % key_identifier()).encode() + password.encode()[:215]
    return hashlib.sha256(text).hexdigest()


TEXT = (b"The quick brown fox jumps over the lazy dog. " * 3000) + random_bytes(20000, 1)


class Compression(ToolTest):
    def test_deflate_is_a_zlib_stream(self):
        for level in ("0", "1", "9"):
            _, out, _ = run(["compress", "-t", "deflate", "-l", level], TEXT)
            self.assertEqual(zlib.decompress(out), TEXT, level)

    def test_bzip2_is_read_by_bzip2(self):
        _, out, _ = run(["compress", "--type", "bzip2"], TEXT)
        self.assertEqual(shell("bzip2 -dc", out), TEXT)

    def test_lzma_is_read_by_xz(self):
        _, out, _ = run(["compress", "--type", "lzma", "--level", "6"], TEXT)
        self.assertEqual(shell("xz --format=lzma -dc", out), TEXT)

    def test_expand_detects_the_method(self):
        made = {"deflate": zlib.compress(TEXT, 9), "bzip2": shell("bzip2 -c", TEXT)}
        for name, packed in made.items():
            _, out, _ = run(["expand"], packed)
            self.assertEqual(out, TEXT, name)
        _, packed, _ = run(["compress", "-t", "lzma"], TEXT)
        _, out, _ = run(["expand", "-t", "lzma"], packed)
        self.assertEqual(out, TEXT)

    def test_in_place_keeps_permissions(self):
        path = self.write("data.txt", TEXT)
        os.chmod(path, 0o640)
        run(["compress", "-i", "-t", "bzip2", path])
        self.assertEqual(shell("bzip2 -dc " + path), TEXT)
        self.assertEqual(stat.S_IMODE(os.stat(path).st_mode), 0o640)
        run(["expand", "--in-place", path])
        self.assertEqual(self.read("data.txt"), TEXT)
        self.assertEqual(os.listdir(self.folder.name), ["data.txt"])

    def test_named_output_replaced_only_when_whole(self):
        self.write("out", b"old contents")
        self.write("bad.z", b"\x78\x9c" + b"\xff" * 100)
        self.assertFails(["expand", "-o", self.path("out"), self.path("bad.z")],
                         names=self.path("bad.z"))
        self.assertEqual(self.read("out"), b"old contents")
        run(["compress", "-o", self.path("out"), self.path("bad.z")])
        self.assertEqual(zlib.decompress(self.read("out")), b"\x78\x9c" + b"\xff" * 100)

    def test_truncated_stream_fails(self):
        packed = zlib.compress(TEXT)
        self.assertFails(["expand"], packed[: len(packed) // 2])

    def test_in_place_needs_a_file(self):
        status, _, _ = run(["compress", "-i"], b"x", check=False)
        self.assertEqual(status, 2)
        status, _, _ = run(["compress", "-i", "-o", "x", "y"], check=False)
        self.assertEqual(status, 2)


class Encryption(ToolTest):
    def test_openssl_decrypts_with_the_documented_key(self):
        password = "correct horse battery staple"
        self.write("pw", (password + "\n").encode())
        data = random_bytes(100003, 5)
        _, out, _ = run(["encrypt", "--password-file", self.path("pw")], data)
        self.assertEqual(len(out), (len(data) // 16 + 1) * 16)
        plain = shell("openssl enc -d -aes-256-cbc -K %s -iv %s" %
                      (documented_key(password), "0" * 32), out)
        self.assertEqual(plain, data)

    def test_decrypts_what_openssl_encrypts(self):
        password = "pässwörd"
        data = random_bytes(4096 * 3 + 7, 6)
        cipher = shell("openssl enc -aes-256-cbc -K %s -iv %s" %
                       (documented_key(password), "0" * 32), data)
        _, out, _ = run(["decrypt", "--password-env", "FE_TEST_PASSWORD"], cipher,
                        env={"FE_TEST_PASSWORD": password})
        self.assertEqual(out, data)

    def test_no_password_uses_the_identifier_alone(self):
        _, out, _ = run(["encrypt", "--no-password"], b"hello")
        plain = shell("openssl enc -d -aes-256-cbc -K %s -iv %s" % (documented_key(""), "0" * 32),
                      out)
        self.assertEqual(plain, b"hello")

    def test_long_passwords_are_cut_to_215_characters(self):
        self.write("pw", b"p" * 300)
        _, out, _ = run(["encrypt", "--password-file", self.path("pw")], b"data")
        plain = shell("openssl enc -d -aes-256-cbc -K %s -iv %s" %
                      (documented_key("p" * 215), "0" * 32), out)
        self.assertEqual(plain, b"data")

    def test_wrong_password_fails_and_leaves_the_output(self):
        self.write("right", b"right\n")
        self.write("wrong", b"wrong\n")
        source = self.write("plain", TEXT)
        run(["encrypt", "--password-file", self.path("right"), "-o", self.path("cipher"), source])
        self.write("out", b"untouched")
        self.assertFails(["decrypt", "--password-file", self.path("wrong"), "-o",
                          self.path("out"), self.path("cipher")], code=13,
                         names=self.path("cipher"))
        self.assertEqual(self.read("out"), b"untouched")
        self.assertFails(["decrypt", "--password-file", self.path("wrong"), "-o",
                          self.path("new"), self.path("cipher")], code=13)
        self.assertFalse(os.path.exists(self.path("new")))

    def test_in_place_round_trip(self):
        self.write("pw", b"secret\n")
        path = self.write("doc", TEXT)
        run(["encrypt", "-i", "--password-file", self.path("pw"), path])
        self.assertNotEqual(self.read("doc"), TEXT)
        run(["decrypt", "-i", "--password-file", self.path("pw"), path])
        self.assertEqual(self.read("doc"), TEXT)

    def test_password_is_never_taken_from_the_command_line(self):
        status, _, err = run(["encrypt", "--password", "x"], b"data", check=False)
        self.assertEqual(status, 2, err)

    def prompt(self, answers, args):
        """Runs the tool on a terminal of its own, answering its prompts;
        returns (exit status, everything the terminal showed)."""
        pid, terminal = pty.fork()
        if pid == 0:
            os.execv(os.environ["FE_TOOL"], [os.environ["FE_TOOL"]] + args)
        shown = b""
        for answer in answers:
            while not shown.rstrip().endswith(b":"):
                shown += os.read(terminal, 1024)
            os.write(terminal, answer + b"\n")
            shown += b"|"
        while True:
            try:
                chunk = os.read(terminal, 1024)
            except OSError:  # the tool ended and closed the terminal
                break
            if not chunk:
                break
            shown += chunk
        _, status = os.waitpid(pid, 0)
        os.close(terminal)
        return os.waitstatus_to_exitcode(status), shown

    def test_prompt_reads_the_terminal_without_echo(self):
        source = self.write("plain", b"data")
        status, shown = self.prompt([b"s3cret", b"s3cret"],
                                    ["encrypt", "-o", self.path("cipher"), source])
        self.assertEqual(status, 0, shown)
        self.assertIn(b"Password: ", shown)
        self.assertIn(b"Password again: ", shown)
        self.assertNotIn(b"s3cret", shown)
        plain = shell("openssl enc -d -aes-256-cbc -K %s -iv %s -in %s" %
                      (documented_key("s3cret"), "0" * 32, self.path("cipher")))
        self.assertEqual(plain, b"data")
        status, shown = self.prompt([b"s3cret"], ["decrypt", self.path("cipher")])
        self.assertEqual(status, 0, shown)
        self.assertTrue(shown.endswith(b"data"), shown)

    def test_prompted_passwords_must_agree(self):
        source = self.write("plain", b"data")
        status, shown = self.prompt([b"one", b"two"], ["encrypt", "-o", self.path("c"), source])
        self.assertEqual(status, 2)
        self.assertIn(b"the two passwords differ", shown)
        self.assertFalse(os.path.exists(self.path("c")))

    def test_without_a_terminal_a_source_is_required(self):
        done = subprocess.run(["setsid", "-w", os.environ["FE_TOOL"], "encrypt"], input=b"data",
                              capture_output=True)
        self.assertEqual(done.returncode, 2, done.stderr)
        self.assertIn(b"--password-file", done.stderr)
        self.assertEqual(done.stdout, b"")

    def test_unset_variable_is_refused(self):
        status, out, _ = run(["decrypt", "--password-env", "FE_TEST_NOT_SET"], b"x" * 16,
                             check=False)
        self.assertEqual((status, out), (2, b""))


class Conversion(ToolTest):
    def test_cp1252_to_utf8_equals_iconv(self):
        data = bytes(range(0x20, 0x7F)) + "€ŠšŽžŸ äöüß".encode("cp1252") + b"\r\n"
        data *= 200
        _, out, _ = run(["convert", "-f", "cp1252", "-t", "utf-8"], data)
        self.assertEqual(out, shell("iconv -f CP1252 -t UTF-8", data))
        _, back, _ = run(["convert", "--from", "65001", "--to", "windows-1252"], out)
        self.assertEqual(back, data)

    def test_line_ends_and_detection(self):
        data = "line one\r\nline two\r\n".encode("utf-16")  # with a byte-order mark
        _, out, _ = run(["convert", "--detect", "-t", "utf-8", "--line-ends", "lf"], data)
        self.assertEqual(out, b"line one\nline two\n")

    def test_strict_refuses_unmappable(self):
        self.assertFails(["convert", "-f", "utf-8", "-t", "cp1252", "--strict"],
                         "日本".encode(), code=1113)

    def test_validate_writes_nothing(self):
        path = self.write("t.txt", b"valid text\n")
        status, out, _ = run(["convert", "--validate", "-f", "utf-8", "-t", "utf-16le", path])
        self.assertEqual((status, out), (0, b""))
        self.assertEqual(os.listdir(self.folder.name), ["t.txt"])

    def test_unknown_code_page_is_refused(self):
        self.assertFails(["convert", "-f", "utf-8", "-t", "99999"], b"x", code=87)
        status, _, _ = run(["convert", "-t", "klingon"], b"x", check=False)
        self.assertEqual(status, 2)


class Failures(ToolTest):
    COMMANDS = [["encode"], ["encode", "-e", "yenc"], ["decode", "-e", "qp"], ["compress"],
                ["expand"], ["encrypt", "--no-password"], ["decrypt", "--no-password"],
                ["convert", "-f", "utf-8", "-t", "cp1252"], ["filter-html"], ["digest"]]

    def test_missing_file(self):
        missing = self.path("missing")
        for command in self.COMMANDS:
            err = self.assertFails(command + [missing], names=missing)
            self.assertTrue("(code 2)" in err or "No such file" in err, err)
        self.assertEqual(os.listdir(self.folder.name), [])

    def test_folder_as_input(self):
        os.mkdir(self.path("folder"))
        for command in self.COMMANDS:
            self.assertFails(command + [self.path("folder")], names=self.path("folder"))

    def test_unreadable_file(self):
        if os.geteuid() == 0:
            # Root reads any file; drop to nobody for the attempt.
            prefix = ["setpriv", "--reuid=65534", "--regid=65534", "--clear-groups"]
        else:
            prefix = []
        path = self.write("secret", b"data")
        os.chmod(path, 0)
        os.chmod(self.folder.name, 0o755)
        for command in self.COMMANDS:
            done = subprocess.run(prefix + [os.environ["FE_TOOL"]] + command + [path],
                                  capture_output=True, cwd="/")
            self.assertEqual(done.returncode, 1, (command, done.stderr))
            self.assertEqual(done.stdout, b"")
            self.assertIn(path.encode() + b": ", done.stderr)

    def test_read_only_output(self):
        source = self.write("in", TEXT)
        target = self.write("out", b"read-only")
        os.chmod(target, 0o444)
        if os.geteuid() == 0:
            prefix = ["setpriv", "--reuid=65534", "--regid=65534", "--clear-groups"]
            os.chmod(self.folder.name, 0o777)
            os.chmod(source, 0o644)
        else:
            prefix = []
        for command in (["encode"], ["compress"], ["encode", "-e", "uu"]):
            done = subprocess.run(prefix + [os.environ["FE_TOOL"]] + command +
                                  ["-o", target, source], capture_output=True)
            self.assertEqual(done.returncode, 1, (command, done.stderr))
            self.assertIn(target.encode() + b": ", done.stderr)
        self.assertEqual(self.read("out"), b"read-only")

    def test_full_standard_output(self):
        with open("/dev/full", "wb") as full:
            for command in (["encode"], ["compress"], ["filter-markdown"]):
                done = subprocess.run([os.environ["FE_TOOL"]] + command, input=TEXT, stdout=full,
                                      stderr=subprocess.PIPE)
                self.assertEqual(done.returncode, 1, command)
                self.assertIn(b"standard output: No space left on device", done.stderr)

    def test_full_disk(self):
        mount = self.path("small")
        os.mkdir(mount)
        if subprocess.run(["mount", "-t", "tmpfs", "-o", "size=256k", "tmpfs", mount],
                          capture_output=True).returncode != 0:
            self.skipTest("no small file system can be mounted here (needs root)")
        self.addCleanup(subprocess.run, ["umount", mount])
        source = self.write("big", random_bytes(1 << 20, 2))
        target = os.path.join(mount, "out")
        with open(target, "wb") as f:
            f.write(b"previous")
        for command in (["encode"], ["encode", "-e", "base32"], ["compress"], ["encode", "-e", "uu"]):
            self.assertFails(command + ["-o", target, source], names=None)
            with open(target, "rb") as f:
                self.assertEqual(f.read(), b"previous", command)
        self.assertEqual(sorted(os.listdir(mount)), ["out"])


class Signals(ToolTest):
    def wait_for(self, condition):
        for _ in range(200):
            if condition():
                return
            time.sleep(0.02)
        self.fail("the tool never got that far")

    def test_interrupted_tool_leaves_no_temporary_file(self):
        # Standard input still open: the tool is copying it into its staged
        # file (file forms) or streaming into a temporary file beside the
        # output (Base64), when the signal comes.
        for command, sig in ((["encode", "-e", "uu"], signal.SIGINT),
                             (["encode", "-o", self.path("out")], signal.SIGTERM),
                             (["compress", "-o", self.path("out")], signal.SIGPIPE)):
            tool = subprocess.Popen([os.environ["FE_TOOL"]] + command, stdin=subprocess.PIPE,
                                    stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                                    env=dict(os.environ, TMP=self.folder.name))
            tool.stdin.write(b"x" * 100000)
            tool.stdin.flush()
            self.wait_for(lambda: os.listdir(self.folder.name))
            time.sleep(0.1)
            tool.send_signal(sig)
            self.assertEqual(tool.wait(), -sig, command)
            tool.stdin.close()
            self.assertEqual(os.listdir(self.folder.name), [], command)
