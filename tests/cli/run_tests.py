#!/usr/bin/python3
"""Runs the fileencoder tool suites and ends with "N passed, N failed"
(skips are listed on their own line).
  FE_TOOL=<fileencoder> FE_SOURCE=<source root> FE_LIBRARY=<libfileencoder.so> run_tests.py"""
import os
import sys
import unittest

here = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, here)
suite = unittest.defaultTestLoader.discover(here, pattern="*_test.py")
result = unittest.TextTestRunner(verbosity=2, stream=sys.stdout).run(suite)
failed = len(result.failures) + len(result.errors)
skipped = len(result.skipped)
print("%d skipped" % skipped)
print("%d passed, %d failed" % (result.testsRun - failed - skipped, failed))
sys.exit(1 if failed else 0)
