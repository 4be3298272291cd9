#!/usr/bin/env python3
"""Configures the build for macOS here and looks at what came out: configure_test.py CMAKE CLANG

The packages of this system stand in for those of a Mac; nothing is compiled."""
import json
import pathlib
import plistlib
import re
import subprocess
import sys
import tempfile
import unittest

TOP = pathlib.Path(__file__).resolve().parents[2]
HOST = TOP / "src/hosts/mac"
RIGHTS = TOP / "packaging/mac/Velloway.entitlements"
RIGHTS_AD_HOC = TOP / "packaging/mac/VellowayAdHoc.entitlements"
CMAKE, CLANG = sys.argv[1:3]


def preset():
    presets = {each["name"]: each for each in json.loads((TOP / "CMakePresets.json").read_text())["configurePresets"]}
    return {**presets["base"]["cacheVariables"], **presets["mac"]["cacheVariables"]}


def stand_ins(folder):
    """What a Mac has and this machine lacks; the toolkit's own package files ask for it."""
    opengl = folder / "OpenGL.framework/OpenGL"
    opengl.parent.mkdir()
    opengl.touch()
    tool = folder / "install_name_tool"
    tool.write_text("#!/bin/sh\n")
    tool.chmod(0o755)
    return {"CMAKE_SYSTEM_NAME": "Darwin", "CMAKE_SYSTEM_PROCESSOR": "arm64", "CMAKE_OSX_SYSROOT": "",
            "CMAKE_CXX_COMPILER": CLANG, "CMAKE_OBJCXX_COMPILER": CLANG,
            "CMAKE_CXX_COMPILER_WORKS": "1", "CMAKE_OBJCXX_COMPILER_WORKS": "1",
            "CMAKE_TRY_COMPILE_TARGET_TYPE": "STATIC_LIBRARY", "CMAKE_INSTALL_NAME_TOOL": tool,
            "CMAKE_PREFIX_PATH": "/usr", "VELLOWAY_MAC_QT": "6.4", "CMAKE_LIBRARY_ARCHITECTURE": multiarch(),
            "OPENGL_INCLUDE_DIR": "/usr/include", "OPENGL_gl_LIBRARY": opengl}


def multiarch():
    return next(pathlib.Path("/usr/include").glob("*-linux-gnu")).name


class ConfigureTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.place = tempfile.TemporaryDirectory()
        folder = pathlib.Path(cls.place.name)
        cls.build = folder / "build"
        values = {**preset(), **stand_ins(folder)}
        done = cls.configure("-G", "Ninja", *[f"-D{name}={value}" for name, value in values.items()])
        cls.output = done.stdout
        if done.returncode != 0:
            raise AssertionError(f"the build can't be configured:\n{cls.output}")
        commands = json.loads((cls.build / "compile_commands.json").read_text())
        cls.commands = {pathlib.Path(each["file"]): each["command"] for each in commands}
        cls.ninja = (cls.build / "build.ninja").read_text()

    @classmethod
    def configure(cls, *arguments):
        return subprocess.run([CMAKE, "-S", TOP, "-B", cls.build, "-Wno-dev", *arguments],
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, timeout=250)

    @classmethod
    def tearDownClass(cls):
        cls.place.cleanup()

    def statement(self, target):
        """What the build says about one thing that it makes."""
        found = re.search(rf"^build [^\n]*{re.escape(target)}:.*?\n\n", self.ninja, re.M | re.S)
        self.assertIsNotNone(found, f"{target} is not made")
        return found.group(0)

    def test_goes_without_a_warning(self):
        self.assertNotIn("CMake Warning", self.output)

    def test_every_file_of_the_host_is_compiled_and_none_of_another(self):
        hosts = {file for file in self.commands if TOP / "src/hosts" in file.parents}
        ours = {file for file in HOST.iterdir() if file.suffix in (".cpp", ".mm")}
        self.assertEqual({file for file in hosts if file.parent == HOST}, ours)
        self.assertEqual({file.parent.name for file in hosts}, {"mac", "posix", "qt"})

    def test_objects_are_counted_by_the_compiler_in_every_file_that_has_some(self):
        files = [file for file in self.commands if file.suffix == ".mm"]
        self.assertTrue(files)
        for file in files:
            self.assertIn(" -fobjc-arc ", self.commands[file], file.name)

    def test_all_files_are_for_the_same_system_and_language_and_as_fast(self):
        for file in HOST.iterdir():
            if file.suffix in (".cpp", ".mm"):
                flags = self.commands[file].split()
                for flag in ("-mmacosx-version-min=13.0", "-std=c++20", "-O2", "-Werror"):
                    self.assertIn(flag, flags, file.name)
                self.assertNotIn("-DNDEBUG", flags, file.name)

    def test_what_is_imported_is_linked(self):
        imported = set()
        for file in HOST.iterdir():
            imported |= set(re.findall(r"#(?:import|include) <(\w+)/\1\.h>", file.read_text()))
        self.assertIn("AppKit", imported)
        program = self.statement("Velloway.app/Contents/MacOS/Velloway")
        linked = set(re.findall(r"-framework (\w+)", program))
        self.assertEqual(imported - {"dispatch"} - linked, set())
        for library in ("libvelloway_host_mac.a", "libvelloway_ui.a", "libvelloway_core.a"):
            self.assertIn(library, program)
        self.assertNotRegex(program, r"libX11|libxcb|DBus")

    def test_the_files_that_views_ask_for_by_name_are_in_the_program(self):
        program = self.statement("Velloway.app/Contents/MacOS/Velloway")
        for resource in ("icon", "symbols"):
            self.assertRegex(program, rf"qrc_{resource}(_init)?\.cpp\.o", resource)

    def test_the_bundle_gets_its_images_and_what_it_says_of_itself(self):
        for image in ("StatusIcon.png", "StatusIcon@2x.png", "Velloway.icns"):
            self.statement(f"Velloway.app/Contents/Resources/{image}")
        (plist,) = self.build.rglob("Velloway.app/Contents/Info.plist")
        text = plist.read_text()
        self.assertNotIn("${", text)
        info = plistlib.loads(text.encode())
        self.assertEqual(info["CFBundleExecutable"], "Velloway")
        self.assertEqual(info["CFBundleShortVersionString"], "1.0.0")

    def test_the_icon_of_the_bundle_is_made_of_the_drawn_images(self):
        images = self.build / "src/app/images"
        drawn = self.statement("src/app/images/Velloway.icns")
        self.assertIn(f"velloway-render-icons {TOP}/src/ui/symbols/StatusIcon.svg {images}", drawn)
        self.assertIn(f"iconutil --convert icns --output {images}/Velloway.icns {images}/Velloway.iconset", drawn)

    def test_the_program_is_signed_for_this_machine_with_its_rights(self):
        program = self.statement("Velloway.app/Contents/MacOS/Velloway")
        self.assertIn(f"codesign --force --sign - --entitlements {RIGHTS_AD_HOC} {self.build}/src/app/Velloway.app",
                      program)

    def test_a_change_of_anything_that_the_signature_covers_signs_again(self):
        program = self.statement("Velloway.app/Contents/MacOS/Velloway")
        needed = program[:program.index("\n")]
        for image in ("StatusIcon.png", "StatusIcon@2x.png", "Velloway.icns"):
            self.assertIn(f" src/app/Velloway.app/Contents/Resources/{image}", needed)
        for file in (f"{TOP}/packaging/mac/Info.plist.in", RIGHTS_AD_HOC):
            self.assertIn(f" {file}", needed)

    def test_the_bundle_gets_the_toolkit_with_what_the_views_import(self):
        bundle = self.statement("CMakeFiles/bundle")
        self.assertIn(f"{self.build}/src/app/Velloway.app -qmldir={TOP}/src/ui", bundle)

    def test_the_bundle_is_signed_with_the_hardened_runtime_and_may_then_load_its_own_libraries(self):
        bundle = self.statement("CMakeFiles/bundle")
        self.assertIn(f"codesign --force --deep --options runtime --entitlements {RIGHTS_AD_HOC} --sign - "
                      f"{self.build}/src/app/Velloway.app", bundle)

    def test_with_a_certificate_the_bundle_loads_what_is_of_the_same_team_alone(self):
        done = self.configure("-DVELLOWAY_SIGNING_IDENTITY=Developer ID Application: Somebody",
                              "-DVELLOWAY_MAC_QT=6.4")
        self.assertEqual(done.returncode, 0, done.stdout)
        ninja = (self.build / "build.ninja").read_text()
        self.assertIn(f"--options runtime --entitlements {RIGHTS} --sign "
                      '"Developer ID Application: Somebody"', ninja.replace("$:", ":").replace("'", '"'))

    def test_an_older_toolkit_is_refused(self):
        done = self.configure("-UVELLOWAY_MAC_QT")
        self.assertIn("VELLOWAY_MAC_QT:STRING=6.8\n", (self.build / "CMakeCache.txt").read_text())
        if done.returncode != 0:
            self.assertIn('version "6.8"', done.stdout)

    def test_the_packages_are_looked_for_where_homebrew_puts_them(self):
        folders = preset()["CMAKE_PREFIX_PATH"].split(";")
        for prefix in ("/opt/homebrew", "/usr/local"):
            for place in (prefix, f"{prefix}/opt/qt", f"{prefix}/opt/icu4c"):
                self.assertIn(place, folders)


unittest.main(argv=sys.argv[:1])
