#!/usr/bin/env python3
"""Checks which C++ library the checks for macOS take."""
import pathlib
import sys
import tempfile
import unittest

sys.dont_write_bytecode = True

from compiler import standard_library


class StandardLibraryTest(unittest.TestCase):
    def setUp(self):
        place = tempfile.TemporaryDirectory()
        self.addCleanup(place.cleanup)
        self.system = pathlib.Path(place.name)

    def install(self, *folders):
        for folder in folders:
            (self.system / folder).mkdir(parents=True)

    def test_is_the_newest_of_gcc_with_its_native_part(self):
        self.install("c++/9", "c++/12", "x86_64-linux-gnu/c++/9", "x86_64-linux-gnu/c++/12")
        self.assertEqual([str(each.relative_to(self.system)) for each in standard_library(self.system)],
                         ["c++/12", "x86_64-linux-gnu/c++/12", "x86_64-linux-gnu", "."])

    def test_is_not_that_of_clang_and_not_a_rest_of_another(self):
        self.install("c++/v1", "c++/12", "c++/13", "x86_64-linux-gnu/c++/12")
        self.assertEqual(standard_library(self.system)[0], self.system / "c++/12")


if __name__ == "__main__":
    unittest.main()
