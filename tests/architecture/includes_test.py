#!/usr/bin/python3
"""Shows that each rule of includes.py notices its breach."""

import sys
import tempfile
import unittest
from pathlib import Path

sys.dont_write_bytecode = True
sys.path.insert(0, str(Path(__file__).resolve().parent))

import includes  # noqa: E402


class Rules(unittest.TestCase):
    def breaches(self, files):
        with tempfile.TemporaryDirectory() as folder:
            root = Path(folder)
            for name, text in files.items():
                path = root / name
                path.parent.mkdir(parents=True, exist_ok=True)
                path.write_text(text, encoding="utf-8")
            return includes.breaches(root)

    def test_good_source(self):
        files = {
            "platform/Log.h": "#include <string>\n",
            "json/Reader.cpp": '#include "platform/Log.h"\n#include <simdjson.h>\n',
            "text/Case.cpp": "#include <unicode/uchar.h>\n",
            "hosts/linux/desktop/A.cpp": '#include "server/S.h"\n#include <QObject>\n',
            "server/S.h": '#include "platform/Log.h"\n',
        }
        self.assertEqual(self.breaches(files), [])

    def test_upward_arrow(self):
        files = {"state/A.cpp": '#include "server/B.h"\n', "server/B.h": ""}
        self.assertIn("state/A.cpp includes server/B.h, which is not below it", self.breaches(files))

    def test_arrow_within_a_layer(self):
        files = {"remote/A.cpp": '  #  include "features/B.h"\n', "features/B.h": ""}
        self.assertIn("remote/A.cpp includes features/B.h, which is not below it", self.breaches(files))

    def test_unknown_folder(self):
        self.assertEqual(self.breaches({"misc/A.h": ""}), ["misc/A.h: is in no layer"])

    def test_circle_of_three_rooms(self):
        files = {
            "hosts/a/A.h": '#include "hosts/b/B.h"\n',
            "hosts/b/B.h": '#include "hosts/c/C.h"\n',
            "hosts/c/C.cpp": '#include "hosts/a/A.h"\n',
            "hosts/c/C.h": "",
        }
        found = self.breaches(files)
        self.assertEqual(len(found), 1)
        self.assertIn("Circle: ", found[0])

    def test_headers_that_include_each_other(self):
        files = {"tabs/A.h": '#include "tabs/B.h"\n', "tabs/B.h": '#include "tabs/A.h"\n'}
        self.assertEqual(len(self.breaches(files)), 1)

    def test_sources_that_include_each_others_headers(self):
        files = {
            "tabs/A.cpp": '#include "tabs/B.h"\n',
            "tabs/B.cpp": '#include "tabs/A.h"\n',
            "tabs/A.h": "",
            "tabs/B.h": "",
        }
        self.assertEqual(len(self.breaches(files)), 1)

    def test_headers_of_a_system_in_the_core(self):
        for header in ["QString", "xcb/xcb.h", "dbus/dbus.h", "boost/asio.hpp", "AppKit/AppKit.h", "unistd.h"]:
            with self.subTest(header):
                found = self.breaches({"shell/A.cpp": f"#include <{header}>\n"})
                self.assertEqual(found, [f"shell/A.cpp includes <{header}>, which is not standard C++"])

    def test_library_in_another_folder_than_its_own(self):
        self.assertEqual(len(self.breaches({"tabs/A.cpp": "#include <unicode/uchar.h>\n"})), 1)

    def test_long_file(self):
        self.assertEqual(self.breaches({"ui/A.qml": "\n" * 401}), ["ui/A.qml has 401 lines"])
        self.assertEqual(self.breaches({"ui/A.qml": "\n" * 400}), [])


if __name__ == "__main__":
    unittest.main()
