"""Shared pieces of the fileencoder tool tests: running the tool, temporary
folders, and the engine library itself (through ctypes) as the reference
for what each command must produce."""
import ctypes
import os
import random
import subprocess
import tempfile
import unittest

TOOL = os.environ["FE_TOOL"]
LIBRARY = os.environ["FE_LIBRARY"]
SOURCE = os.environ["FE_SOURCE"]


def run(args, data=None, env=None, check=True):
    """Runs the tool; returns (status, stdout bytes, stderr text)."""
    full_env = dict(os.environ)
    full_env.update(env or {})
    done = subprocess.run([TOOL] + list(args), input=data, capture_output=True, env=full_env,
                          timeout=300)
    if check and done.returncode != 0:
        raise AssertionError("fileencoder %s failed (%d): %s" %
                             (" ".join(args), done.returncode, done.stderr.decode()))
    return done.returncode, done.stdout, done.stderr.decode()


def shell(command, data=None):
    """Runs another tool through the shell; returns its standard output."""
    return subprocess.run(command, shell=True, input=data, capture_output=True,
                          check=True).stdout


def random_bytes(length, seed):
    return random.Random(seed).randbytes(length)


class Engine:
    """The engine's public C functions, for the exact bytes a command must give."""

    def __init__(self, path):
        self.lib = ctypes.CDLL(path)
        self.lib.EncodeBuffer.argtypes = [ctypes.c_void_p, ctypes.c_int32, ctypes.c_char_p,
                                          ctypes.c_int32, ctypes.c_uint32]
        self.lib.DecodeBuffer.argtypes = [ctypes.c_char_p, ctypes.c_void_p, ctypes.c_int32,
                                          ctypes.c_uint32]
        for name in ("FilterHtmlText", "FilterMarkdownText", "FilterUnicodeText"):
            getattr(self.lib, name).argtypes = [ctypes.c_char_p, ctypes.c_int32,
                                                ctypes.c_char_p, ctypes.c_int32]

    def encode(self, data, flags, units=None):
        count = len(data) if units is None else units
        size = 8 * len(data) + 256
        out = ctypes.create_string_buffer(size)
        n = self.lib.EncodeBuffer(data, count, out, size, flags)
        return None if n < 0 else out.raw[:n]

    def decode(self, text, flags, unit=1):
        size = 4 * len(text) + 256
        out = ctypes.create_string_buffer(size * unit)
        n = self.lib.DecodeBuffer(text, out, size, flags)
        return None if n < 0 else out.raw[:n * unit]

    def filter(self, name, text):
        function = getattr(self.lib, name)
        needed = function(text, len(text), None, 0)
        out = ctypes.create_string_buffer(needed + 1)
        function(text, len(text), out, needed + 1)
        return out.raw[:needed]


ENGINE = Engine(LIBRARY)
if os.environ.pop("FE_PRELOADED", None):
    # The sanitizer runtimes were preloaded for this process alone: the tool
    # under test and the other programs run with their own settings.
    os.environ.pop("LD_PRELOAD", None)
    os.environ.pop("ASAN_OPTIONS", None)


class ToolTest(unittest.TestCase):
    """A test with its own temporary folder (self.path(name))."""

    def setUp(self):
        self.folder = tempfile.TemporaryDirectory(prefix="fe_tool_test_")
        self.addCleanup(self.folder.cleanup)

    def path(self, name):
        return os.path.join(self.folder.name, name)

    def write(self, name, data):
        with open(self.path(name), "wb") as f:
            f.write(data)
        return self.path(name)

    def read(self, name):
        with open(self.path(name), "rb") as f:
            return f.read()

    def assertFails(self, args, data=None, code=None, names=None, env=None):
        """The command fails with status 1, prints the message line, and
        writes nothing to standard output."""
        status, out, err = run(args, data, env=env, check=False)
        self.assertEqual(status, 1, err)
        self.assertEqual(out, b"")
        self.assertTrue(err.startswith("fileencoder: "), err)
        if code is not None:
            self.assertIn("(code %d)" % code, err)
        if names is not None:
            self.assertIn(names + ": ", err)
        return err
