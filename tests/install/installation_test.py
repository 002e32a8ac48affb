"""The control installed the ways users install it, each in a fresh Wine prefix
of its own: the MSI packages (per machine, per user, an upgrade), per-user
registration with regsvr32 /n /i:user, and registration-free use through the
manifest beside the control.

  installation_test.py <build folder of the Windows x64 build> <source folder>
"""
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest

BUILD = pathlib.Path(sys.argv[1]).resolve()
SOURCE = pathlib.Path(sys.argv[2]).resolve()
del sys.argv[1:3]

WINE_RUN = SOURCE / "scripts" / "wine-run.sh"
PREFIX = BUILD / "tests" / "install" / "wineprefix"
CONTROL_DIR = BUILD / "encode" / "ocx"
INSTALLER_DIR = BUILD / "installer"
VERSION = (SOURCE / "CMakeLists.txt").read_text().split("project(FileEncoder VERSION ")[1].split()[0]
MACHINE_MSI = INSTALLER_DIR / f"FileEncoder-{VERSION}-x64.msi"
USER_MSI = INSTALLER_DIR / f"FileEncoder-{VERSION}-x64-user.msi"
PREVIOUS_MSI = BUILD / "tests" / "install" / "FileEncoder-previous-x64.msi"
PRODUCT_NAME = "Orvane File Encoding Control 12"


def identifiers():
    values = {}
    for line in (SOURCE / "encode" / "identifiers.h").read_text().splitlines():
        if line.startswith("#define FE_UUID_"):
            _, name, text = line.split()
            values[name[len("FE_UUID_"):]] = "{" + text.strip('"').upper() + "}"
    return values


IDS = identifiers()
# Every key the control owns below a classes key.
OWN_KEYS = [
    "Orvane.FileEncoder",
    "Orvane.FileEncoder.12",
    "CLSID\\" + IDS["CLASS"],
    "TypeLib\\" + IDS["LIBRARY"],
    "Interface\\" + IDS["INTERFACE"],
    "Interface\\" + IDS["EVENTS"],
]
MACHINE_CLASSES = "HKEY_LOCAL_MACHINE\\Software\\Classes"
USER_CLASSES = "HKEY_CURRENT_USER\\Software\\Classes"


def wine(*arguments, check=True):
    env = dict(os.environ, FE_WINEPREFIX=str(PREFIX))
    # Output goes through files, not pipes: Wine's background services
    # inherit the handles and outlive the command.
    with tempfile.TemporaryFile() as out, tempfile.TemporaryFile() as err:
        code = subprocess.run([str(WINE_RUN), *arguments], env=env, stdout=out, stderr=err,
                              stdin=subprocess.DEVNULL).returncode
        out.seek(0)
        err.seek(0)
        result = subprocess.CompletedProcess(arguments, code,
                                             out.read().decode(errors="replace"),
                                             err.read().decode(errors="replace"))
    if check and result.returncode != 0:
        raise AssertionError(f"{arguments} exited {code}: {result.stdout}{result.stderr}")
    return result


def windows_path(path):
    return "Z:" + str(path).replace("/", "\\")


def drive_c():
    return PREFIX / "drive_c"


def read_keys(classes):
    """The control's registry entries below one classes key, as a set of
    (key relative to the classes key, value name, data) triples."""
    entries = set()
    with tempfile.TemporaryDirectory(dir=drive_c()) as folder:
        folder = pathlib.Path(folder)
        # One batch file for all keys: each Wine process start costs seconds.
        batch = folder / "export.cmd"
        batch.write_text("".join(
            f'reg export "{classes}\\{key}" "{windows_path(folder / f"{index}.reg")}" /y\r\n'
            for index, key in enumerate(OWN_KEYS)))
        wine("cmd", "/c", windows_path(batch), check=False)
        for target in sorted(folder.glob("*.reg")):
            current = None
            for line in target.read_bytes().decode("utf-16").splitlines():
                line = line.strip()
                if line.startswith("[") and line.endswith("]"):
                    current = line[1:-1][len(classes) + 1:]
                    entries.add((current, None, None))
                elif "=" in line and current is not None:
                    name, data = line.split("=", 1)
                    name = "" if name == "@" else name.strip('"')
                    entries.add((current, name, data.strip('"').replace("\\\\", "\\")))
    return entries


def normalized(entries, module):
    """Entries with the module's path and folder replaced by placeholders; a
    folder is written with or without its final backslash."""
    folder = module.rsplit("\\", 1)[0]
    result = set()
    for key, name, data in entries:
        if data is not None:
            data = data.replace(module, "<module>").rstrip("\\").replace(folder, "<folder>")
        result.add((key, name, data))
    return result


class Installation(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        shutil.rmtree(PREFIX, ignore_errors=True)
        wine("cmd", "/c", "exit")
        # One Wine server for the whole run, instead of one per command.
        cls.server = subprocess.Popen(["wineserver", "--persistent", "--foreground"],
                                      env=dict(os.environ, WINEPREFIX=str(PREFIX)),
                                      stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        # What self-registration writes, for comparison: the build's module,
        # registered and unregistered again before any test runs.
        module = windows_path(CONTROL_DIR / "FileEncoder.ocx")
        wine("regsvr32", "/s", module)
        cls.registered = normalized(read_keys(MACHINE_CLASSES), module)
        wine("regsvr32", "/s", "/u", module)
        # The reference itself: every key the control owns, with its entries.
        found = {key for key, _, _ in cls.registered}
        assert set(OWN_KEYS) <= found, found
        assert ("CLSID\\" + IDS["CLASS"] + "\\Insertable", None, None) in cls.registered

    @classmethod
    def tearDownClass(cls):
        subprocess.run(["wineserver", "--kill"], env=dict(os.environ, WINEPREFIX=str(PREFIX)))
        cls.server.wait()

    def setUp(self):
        self.assert_no_keys()

    def assert_no_keys(self):
        self.assertEqual(read_keys(MACHINE_CLASSES), set())
        self.assertEqual(read_keys(USER_CLASSES), set())

    def products(self):
        """The installed-programs entries of the control."""
        listing = wine("reg", "query",
                       "HKLM\\Software\\Microsoft\\Windows\\CurrentVersion\\Uninstall", "/s",
                       check=False).stdout.replace("\r", "")
        found = []
        key = None
        for line in listing.splitlines():
            if line.startswith("HKEY_"):
                key = line
            elif line.split() == ["DisplayName", "REG_SZ", *PRODUCT_NAME.split()]:
                found.append(key)
        return found

    def run_script(self, text):
        script = drive_c() / "round_trip.vbs"
        script.write_text(text.replace("\n", "\r\n"))
        try:
            return wine("cscript", "//nologo", "C:\\round_trip.vbs").stdout.replace("\r", "")
        finally:
            script.unlink()

    def test_the_package_for_the_machine_installs_registers_and_uninstalls(self):
        wine("msiexec", "/i", windows_path(MACHINE_MSI), "/qn")
        folder = drive_c() / "Program Files" / "Orvane" / "FileEncoder"
        self.assertTrue((folder / "FileEncoder.ocx").is_file())
        self.assertTrue((folder / "Orvane.FileEncoder.manifest").is_file())
        module = "C:\\Program Files\\Orvane\\FileEncoder\\FileEncoder.ocx"
        self.assertEqual(normalized(read_keys(MACHINE_CLASSES), module), self.registered)
        self.assertEqual(read_keys(USER_CLASSES), set())
        self.assertEqual(len(self.products()), 1)
        output = self.run_script(
            'Set fe = CreateObject("Orvane.FileEncoder")\n'
            "fe.Encoding = 2\n"
            'fe.DecodedText = "="\n'
            "WScript.Echo fe.EncodedText\n"
            "fe.Encoding = 1\n"
            'fe.EncodedText = "SGVsbG8="\n'
            "WScript.Echo fe.DecodedText\n")
        self.assertEqual(output, "=3D\nHello\n")

        wine("msiexec", "/x", windows_path(MACHINE_MSI), "/qn")
        self.assert_no_keys()
        self.assertFalse((drive_c() / "Program Files" / "Orvane").exists())
        self.assertEqual(self.products(), [])

    def test_a_newer_package_replaces_the_older_one(self):
        wine("msiexec", "/i", windows_path(PREVIOUS_MSI), "/qn")
        self.assertEqual(len(self.products()), 1)
        wine("msiexec", "/i", windows_path(MACHINE_MSI), "/qn")
        products = self.products()
        self.assertEqual(len(products), 1)
        version = wine("reg", "query", products[0], "/v", "DisplayVersion").stdout
        self.assertIn(VERSION, version)
        self.assertTrue(
            (drive_c() / "Program Files" / "Orvane" / "FileEncoder" / "FileEncoder.ocx").is_file())
        wine("msiexec", "/x", windows_path(MACHINE_MSI), "/qn")
        self.assert_no_keys()
        self.assertEqual(self.products(), [])

    def test_the_package_for_one_user_writes_only_below_the_user(self):
        wine("msiexec", "/i", windows_path(USER_MSI), "/qn")
        folders = list((drive_c() / "users").glob("*/AppData/Local/Programs/Orvane/FileEncoder"))
        self.assertEqual(len(folders), 1)
        self.assertTrue((folders[0] / "FileEncoder.ocx").is_file())
        user = folders[0].parent.parent.parent.parent.parent.name
        module = f"C:\\users\\{user}\\AppData\\Local\\Programs\\Orvane\\FileEncoder\\FileEncoder.ocx"
        self.assertEqual(normalized(read_keys(USER_CLASSES), module), self.registered)
        self.assertEqual(read_keys(MACHINE_CLASSES), set())
        wine("msiexec", "/x", windows_path(USER_MSI), "/qn")
        self.assert_no_keys()
        self.assertFalse(folders[0].parent.exists())

    def test_regsvr32_for_the_current_user_leaves_the_machine_alone(self):
        module = windows_path(CONTROL_DIR / "FileEncoder.ocx")
        wine("regsvr32", "/s", "/n", "/i:user", module)
        self.assertEqual(normalized(read_keys(USER_CLASSES), module), self.registered)
        self.assertEqual(read_keys(MACHINE_CLASSES), set())
        wine("regsvr32", "/s", "/u", "/n", "/i:user", module)
        self.assert_no_keys()

    def test_regsvr32_refuses_an_unknown_install_command(self):
        module = windows_path(CONTROL_DIR / "FileEncoder.ocx")
        self.assertNotEqual(
            wine("regsvr32", "/s", "/n", "/i:machine", module, check=False).returncode, 0)
        self.assert_no_keys()

    def test_the_manifest_creates_the_control_with_nothing_registered(self):
        with tempfile.TemporaryDirectory(dir=drive_c()) as folder:
            folder = pathlib.Path(folder)
            for path in (CONTROL_DIR / "FileEncoder.ocx",
                         CONTROL_DIR / "Orvane.FileEncoder.manifest",
                         BUILD / "tests" / "install" / "regfree_client.exe",
                         SOURCE / "tests" / "install" / "regfree_client.exe.manifest"):
                shutil.copy(path, folder)
            client = windows_path(folder / "regfree_client.exe")
            for arguments in (["context", windows_path(folder)], ["application"]):
                result = wine(client, *arguments, check=False)
                self.assertEqual(result.returncode, 0, result.stdout)
                self.assertEqual(result.stdout.replace("\r", ""), "created; EncodedText = =3D\n")
            # Without the application's manifest the same program finds nothing.
            (folder / "regfree_client.exe.manifest").unlink()
            self.assertNotEqual(wine(client, "application", check=False).returncode, 0)


if __name__ == "__main__":
    # The summary line is what the test runner counts.
    outcome = unittest.main(verbosity=2, exit=False).result
    failures = len(outcome.failures) + len(outcome.errors)
    print(f"{outcome.testsRun - failures} passed, {failures} failed")
    sys.exit(1 if failures else 0)
