"""compare, digest, token, uuid, the text filters, progress, help, the man
page and bash completion."""
import base64
import hashlib
import os
import re
import subprocess
import time

from tool_support import ENGINE, SOURCE, TOOL, ToolTest, random_bytes, run, shell


def control_error(name):
    """The number of one of the control's errors, from the published list."""
    with open(os.path.join(SOURCE, "encode", "engine", "include", "file_encoder_errors.inc"),
              encoding="utf-8") as f:
        return int(re.search(r"FE_ERROR_CODE\(%s, (\d+)," % name, f.read()).group(1))


class Compare(ToolTest):
    def test_same_files_match(self):
        a = self.write("a", b"same")
        b = self.write("b", b"same")
        self.assertEqual(run(["compare", a, b])[0], 0)
        self.assertEqual(run(["compare", self.write("e1", b""), self.write("e2", b"")])[0], 0)

    def test_differences_have_their_codes(self):
        a = self.write("a", b"abcd")
        self.assertFails(["compare", a, self.write("b", b"abce")],
                         code=control_error("ovErrorFileContentMismatch"), names=a)
        self.assertFails(["compare", a, self.write("c", b"abc")],
                         code=control_error("ovErrorFileSizeMismatch"))
        c = self.write("copy", b"abcd")
        os.utime(c, (1000000000, 1000000000))
        self.assertEqual(run(["compare", "--contents", a, c])[0], 0)
        self.assertFails(["compare", "--modified", a, c],
                         code=control_error("ovErrorFileTimeMismatch"))

    def test_digest_check(self):
        data = random_bytes(5000, 1)
        path = self.write("f", data)
        digest = hashlib.sha256(data).hexdigest()
        self.assertEqual(run(["compare", "--digest", digest, path])[0], 0)
        self.assertEqual(run(["compare", "--digest", "0x" + digest.upper(), path])[0], 0)
        self.assertFails(["compare", "--digest", digest[:63], path],
                         code=control_error("ovErrorInvalidDigestType"))
        self.assertFails(["compare", "--digest", hashlib.sha256(b"x").hexdigest(), path],
                         code=control_error("ovErrorFileDigestMismatch"))
        self.assertEqual(run(["compare", "--md5", "--digest", hashlib.md5(data).hexdigest(),
                              path])[0], 0)

    def test_one_file_needs_a_digest(self):
        self.assertFails(["compare", self.write("a", b"x")],
                         code=control_error("ovErrorInvalidDigestValue"))


class Digest(ToolTest):
    def test_digests_equal_coreutils(self):
        for length in (0, 1, 8191, 8192, 100000):
            path = self.write("f%d" % length, random_bytes(length, length))
            for kind, tool in (("md5", "md5sum"), ("sha1", "sha1sum"), ("sha256", "sha256sum")):
                _, out, _ = run(["digest", "-t", kind, path])
                self.assertEqual(out.decode().lower(), shell("%s %s" % (tool, path)).decode())

    def test_standard_input_and_several_files(self):
        _, out, _ = run(["digest"], b"abc")
        self.assertEqual(out, (hashlib.sha256(b"abc").hexdigest().upper() + "  -\n").encode())
        a = self.write("a", b"1")
        status, out, err = run(["digest", a, self.path("missing"), a], check=False)
        self.assertEqual(status, 1)
        self.assertEqual(out.count(b"\n"), 2)
        self.assertIn(self.path("missing") + ": ", err)


class Identifiers(ToolTest):
    def test_uuid_7(self):
        before = int(time.time() * 1000)
        _, out, _ = run(["uuid", "-n", "3"])
        after = int(time.time() * 1000)
        lines = out.decode().split()
        self.assertEqual(len(lines), 3)
        for line in lines:
            self.assertRegex(line, r"^[0-9a-f]{8}-[0-9a-f]{4}-700[0-9a-f]-[89ab][0-9a-f]{3}-[0-9a-f]{12}$")
            stamp = int(line[:8] + line[9:13], 16)
            self.assertTrue(before <= stamp <= after)

    def test_uuid_8_custom(self):
        _, out, _ = run(["uuid", "-v", "8", "--custom", "3735928559"])
        self.assertRegex(out.decode(), r"^deadbeef-[0-9a-f]{4}-8[0-9a-f]{3}-[89ab][0-9a-f]{3}-[0-9a-f]{12}\n$")
        status, _, _ = run(["uuid", "--custom", "5"], check=False)
        self.assertEqual(status, 2)

    def test_tokens(self):
        _, out, _ = run(["token", "-b", "256", "-e", "base64", "-n", "4"])
        tokens = out.decode().split()
        self.assertEqual(len(set(tokens)), 4)
        for token in tokens:
            self.assertEqual(len(base64.b64decode(token + "=")), 32)
        _, out, _ = run(["token", "-e", "base32"])
        self.assertRegex(out.decode(), r"^[a-z2-7]{26}\n$")
        _, out, _ = run(["token"])
        self.assertRegex(out.decode(), r"^[1-9A-HJ-NP-Za-km-z]{21,22}\n$")


class TextFilters(ToolTest):
    def test_filters_equal_the_engine(self):
        html = b"<html><body><h1>Title</h1><p>One &amp; two<br>three</p><ul><li>a<li>b</ul></body></html>"
        markdown = b"# Title\n\nSome *emphasis* and [a link](http://x.example).\n\n- one\n- two\n"
        unicode = "Ｈｅｌｌｏ ᴡᴏʀʟᴅ\u200b — café".encode()
        for command, name, text in (("filter-html", "FilterHtmlText", html),
                                    ("filter-markdown", "FilterMarkdownText", markdown),
                                    ("filter-unicode", "FilterUnicodeText", unicode)):
            _, out, _ = run([command], text)
            self.assertEqual(out, ENGINE.filter(name, text), command)
            self.assertNotEqual(out, b"")

    def test_html_line_ends_and_empty_input(self):
        _, out, _ = run(["filter-html"], b"<p>one<br>two</p>")
        self.assertEqual(out.split(b"\r\n")[:2], [b"one", b"two"])
        self.assertEqual(run(["filter-html"], b"")[1], b"")

    def test_is_confusable(self):
        self.assertEqual(run(["filter-unicode", "--is-confusable"], "pаypal".encode())[1], b"true\n")
        self.assertEqual(run(["filter-unicode", "--is-confusable"], b"paypal")[1], b"false\n")


class Progress(ToolTest):
    def test_bar_follows_the_engine(self):
        path = self.write("big", random_bytes(8 << 20, 1))
        _, _, err = run(["--progress", "always", "compress", "-t", "bzip2", "-o",
                         self.path("out"), path])
        self.assertIn("100%", err)
        self.assertIn("8.0/8.0 MiB", err)
        _, _, err = run(["compress", "--progress", "never", "-o", self.path("out2"), path])
        self.assertEqual(err, "")
        _, _, err = run(["compress", "-o", self.path("out3"), path])  # not a terminal
        self.assertEqual(err, "")
        self.assertEqual(self.read("out2"), self.read("out3"))

    def test_chunked_base64_draws_its_own_bar(self):
        path = self.write("big", random_bytes(3 << 20, 1))
        _, out, err = run(["--progress", "always", "encode", path])
        self.assertIn("100%", err)
        self.assertEqual(out, base64.b64encode(self.read("big")))


class CommandLine(ToolTest):
    COMMANDS = ["encode", "decode", "compress", "expand", "encrypt", "decrypt", "convert",
                "compare", "digest", "token", "uuid", "filter-html", "filter-markdown",
                "filter-unicode"]

    def test_help_for_every_command(self):
        _, out, _ = run(["--help"])
        for command in self.COMMANDS:
            self.assertIn(command, out.decode())
            status, text, _ = run([command, "--help"])
            self.assertEqual(status, 0)
            self.assertIn("Usage:", text.decode())

    def test_version(self):
        with open(os.path.join(SOURCE, "CMakeLists.txt"), encoding="utf-8") as f:
            version = re.search(r"project\(FileEncoder VERSION ([0-9.]+)", f.read()).group(1)
        self.assertEqual(run(["--version"])[1].decode(), "fileencoder %s\n" % version)

    def test_no_command_is_a_usage_error(self):
        self.assertEqual(run([], check=False)[0], 2)
        self.assertEqual(run(["frobnicate"], check=False)[0], 2)

    def test_man_page_renders_without_warnings(self):
        page = os.path.join(SOURCE, "encode", "cli", "fileencoder.1")
        done = subprocess.run(["groff", "-man", "-ww", "-z", page], capture_output=True)
        self.assertEqual((done.returncode, done.stderr), (0, b""))
        with open(page, encoding="utf-8") as f:
            text = f.read()
        for command in self.COMMANDS:
            self.assertIn(command.replace("-", "\\-"), text)

    def test_bash_completion(self):
        script = os.path.join(SOURCE, "encode", "cli", "fileencoder.bash-completion")

        def complete(line):
            words = line.split(" ")
            program = (
                "source /usr/share/bash-completion/bash_completion; source %s; "
                "fileencoder() { %s \"$@\"; }; "
                "COMP_WORDS=(%s); COMP_CWORD=%d; COMP_LINE=%s; COMP_POINT=${#COMP_LINE}; "
                "_fileencoder; printf '%%s\\n' \"${COMPREPLY[@]}\"" %
                (script, TOOL, " ".join("'%s'" % w for w in words), len(words) - 1,
                 "'%s'" % line))
            return subprocess.run(["bash", "-c", program], capture_output=True, text=True,
                                  check=True).stdout.split()

        self.assertEqual(sorted(complete("fileencoder com")), ["compare", "compress"])
        self.assertEqual(complete("fileencoder compress -t "), ["deflate", "bzip2", "lzma"])
        self.assertEqual(complete("fileencoder encode -e y"), ["yenc"])
        self.assertIn("--password-file", complete("fileencoder encrypt --pass"))
        self.assertEqual(sorted(complete("fileencoder --progress a")), ["always", "auto"])
