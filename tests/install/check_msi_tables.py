"""Checks the tables of one MSI package of the control, for the builds whose
packages this machine cannot install (x86) as well as the x64 ones.

  check_msi_tables.py <package.msi> <x64|x86> <perMachine|perUser> <version>
"""
import subprocess
import sys
import unittest

PACKAGE, ARCH, SCOPE, VERSION = sys.argv[1:5]
del sys.argv[1:5]


def table(name):
    text = subprocess.run(["msiinfo", "export", PACKAGE, name], capture_output=True, text=True,
                          check=True).stdout.replace("\r", "")
    lines = text.split("\n")[3:]
    return [line.split("\t") for line in lines if line]


def summary():
    text = subprocess.run(["msiinfo", "suminfo", PACKAGE], capture_output=True, text=True,
                          check=True).stdout
    return dict(line.split(": ", 1) for line in text.splitlines() if ": " in line)


class PackageTables(unittest.TestCase):
    def test_platform_and_scope(self):
        info = summary()
        self.assertEqual(info["Template"], ("x64" if ARCH == "x64" else "Intel") + ";1033")
        # Word count bit 3: the package installs without elevation.
        self.assertEqual(int(info["Source"].split()[0]) & 8, 8 if SCOPE == "perUser" else 0)
        properties = dict(row[:2] for row in table("Property"))
        self.assertEqual(properties["ProductVersion"], VERSION)
        self.assertEqual(properties.get("ALLUSERS"), "1" if SCOPE == "perMachine" else None)

    def test_files(self):
        names = sorted(row[2] for row in table("File"))
        self.assertEqual(names, ["FileEncoder.ocx", "Orvane.FileEncoder.manifest"])

    def test_components_match_the_architecture(self):
        for row in table("Component"):
            self.assertEqual(int(row[3]) & 256, 256 if ARCH == "x64" else 0, row)

    def test_registry_rows_go_below_the_right_classes_key(self):
        rows = table("Registry")
        self.assertEqual(len(rows), 32)
        root = "2" if SCOPE == "perMachine" else "1"
        for row in rows:
            self.assertEqual(row[1], root, row)
            self.assertTrue(row[2].startswith("Software\\Classes\\"), row)
        platform = "win64" if ARCH == "x64" else "win32"
        self.assertEqual(sum(row[2].endswith("\\1.0\\0\\" + platform) for row in rows), 1)
        self.assertEqual(sum(row[4] == "[#FileEncoderOcx]" for row in rows), 2)

    def test_a_newer_build_replaces_any_package_of_the_same_or_an_older_version(self):
        rows = {row[6]: row for row in table("Upgrade")}
        upgrade = rows["WIX_UPGRADE_DETECTED"]
        self.assertEqual((upgrade[1], upgrade[2], upgrade[4]), ("", VERSION, "513"))
        downgrade = rows["WIX_DOWNGRADE_DETECTED"]
        self.assertEqual((downgrade[1], downgrade[2], downgrade[4]), (VERSION, "", "2"))


if __name__ == "__main__":
    # The summary line is what the test runner counts.
    outcome = unittest.main(verbosity=2, exit=False).result
    failures = len(outcome.failures) + len(outcome.errors)
    print(f"{outcome.testsRun - failures} passed, {failures} failed")
    sys.exit(1 if failures else 0)
