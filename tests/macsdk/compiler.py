"""How the checks compile: for Macs as strictly as the compiler can, and for this system as the tests are."""
import pathlib
import platform
import re
import shutil
import subprocess

TOP = pathlib.Path(__file__).resolve().parents[2]
SDK = TOP / "tests/macsdk"
MACHINES = ("x86_64", "arm64")
# These join Qt and the platform, and are compiled with Qt's headers for this system.
WITH_QT = {"MacHostRuntime.mm", "QtSurface.cpp"}
QT = ["Core", "Gui", "Widgets", "Qml", "Quick", "QuickControls2", "QmlIntegration", "Network"]
WARNINGS = ["-Wall", "-Wextra", "-Wshadow", "-Wnon-virtual-dtor", "-Wno-missing-field-initializers",
            "-Wnullable-to-nonnull-conversion", "-Wundeclared-selector", "-Wselector", "-Wstrict-selector-match",
            "-Wobjc-missing-super-calls", "-Wunguarded-availability", "-Wdeprecated-declarations",
            "-Warc-repeated-use-of-weak", "-Wimplicit-retain-self", "-Werror"]
SANITIZERS = ["-fsanitize=address,undefined", "-fno-sanitize-recover=undefined"]
# Read once for all files of a language instead of once for each; the build shows that each file includes its own.
STANDARD = ["algorithm", "array", "atomic", "chrono", "cstdint", "cstdlib", "filesystem", "functional", "map",
            "memory", "optional", "string", "string_view", "utility", "vector"]


def run(command):
    done = subprocess.run([str(part) for part in command], stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                          text=True, errors="replace", timeout=300)
    return done.returncode == 0, done.stdout


def language(name, suffix=""):
    if name.endswith(".mm"):
        return ["-x", f"objective-c++{suffix}", "-fobjc-arc", "-fobjc-runtime=macosx-13"]
    return ["-x", f"c++{suffix}"]


def with_qt():
    qt = next(pathlib.Path("/usr/include").glob("*/qt6"))
    flags = ["-I", TOP / "src/ui", "-isystem", qt]
    for module in QT:
        flags += ["-isystem", qt / f"Qt{module}"]
    return flags


def standard_library(system):
    """The folders of the newest C++ library of GCC, and of the C library under it. Others may be there too: that of
    clang as `v1`, and what is left of a version that is no longer installed."""
    native = next(system.glob("*-linux-gnu"))
    versions = [each for each in (system / "c++").iterdir()
                if each.name.isdigit() and (native / "c++" / each.name).is_dir()]
    newest = max(versions, key=lambda each: int(each.name))
    return [newest, native / "c++" / newest.name, native, system]


class Compiler:
    """`folder` keeps what is made once for several files; it must stay while the compiler is used."""

    def __init__(self, clang, folder):
        self.clang, self.folder = clang, pathlib.Path(folder)
        self.standard = self.folder / "standard.h"
        self.standard.write_text("".join(f"#include <{name}>\n" for name in STANDARD))
        self.base = [clang, "-std=c++20", "-fblocks", "-isystem", SDK / "include", "-I", TOP / "src"]
        resources = pathlib.Path(run([clang, "-print-resource-dir"])[1].strip()) / "include"
        self.headers = [resources, *standard_library(pathlib.Path("/usr/include"))]
        # Each way of compiling, for C++ and for Objective-C++.
        self.ways = {machine: self.for_mac(machine) for machine in MACHINES}
        self.ways["tests"] = [*self.base, "-g0", *SANITIZERS]

    def for_mac(self, machine):
        """The headers of this system stand in for the standard library of the platform."""
        flags = [*self.base, *WARNINGS, "-DMACSDK_STRICT_DELEGATES", "-target", f"{machine}-apple-macos13",
                 "-nostdinc", "-nostdinc++", "-D_GNU_SOURCE", "-D__linux__", "-U__nonnull"]
        here = platform.machine()
        if here not in (machine, {"arm64": "aarch64"}.get(machine)):
            flags += [f"-D__{here}__", "-D__builtin_ia32_pause()=((void)0)"]
        for folder in self.headers:
            flags += ["-isystem", folder]
        return flags

    def prepare(self, *ways):
        """Reads the standard library ahead, for C++ and for Objective-C++."""
        made = []
        for way in ways:
            for name in ("any.cpp", "any.mm"):
                made.append(subprocess.Popen([str(part) for part in (
                    *self.ways[way], *language(name, "-header"), "-fpch-instantiate-templates", self.standard,
                    "-o", self.ahead(way, name))]))
        if any(each.wait() != 0 for each in made):
            raise RuntimeError("the headers of the standard library do not compile")

    def ahead(self, way, name):
        return self.folder / f"{way}{pathlib.Path(name).suffix}.pch"

    def command(self, way, name):
        flags = [*self.ways[way], *language(name)]
        if name in WITH_QT:
            # Qt's headers are those for this system.
            return flags + with_qt() + ["-U__APPLE__", "-U__MACH__", "-DQT_NO_VERSION_TAGGING"]
        return flags + ["-include-pch", self.ahead(way, name)]

    def object_for_mac(self, machine, file, name, made):
        # What is read ahead is not for the cache.
        cache = [shutil.which("ccache")] if name in WITH_QT and shutil.which("ccache") else []
        return run([*cache, *self.command(machine, name), "-c", file, "-o", made])

    def object_for_tests(self, file, name, made):
        return run([*self.command("tests", name), "-c", file, "-o", made])

    def analyse(self, file, name):
        """What the analyser has found, and what the compiler says if it can't read the file."""
        works, output = run([*self.command("x86_64", name), "--analyze", "-Xclang",
                             "-analyzer-checker=osx,nullability", "-Xclang", "-analyzer-werror", file, "-o",
                             "/dev/null"])
        reports = re.findall(r"^(.*?):\d+:\d+: error: (.*) \[([a-zA-Z+]+\.[\w.]+)\]$", output, re.M)
        found = [each for each in reports if not self.is_known(name, *each)]
        if not works and len(reports) != len(re.findall(r"^.*?: (?:fatal )?error: ", output, re.M)):
            return [], output
        return [f"{where}: {message} [{checker}]" for where, message, checker in found], ""

    def is_known(self, name, where, message, checker):
        """Qt hands the function of a queued call to the event, which deletes it, inside its library."""
        return (name == "QtSurface.cpp" and where.endswith("/QtCore/qobjectdefs.h") and
                message == "Potential memory leak" and checker == "cplusplus.NewDeleteLeaks")

    def declarations(self, headers, name):
        """What the compiler makes of headers, printed as a tree."""
        file = self.folder / f"declared{pathlib.Path(name).suffix}"
        file.write_text("".join(f"#include <{header}>\n" for header in headers))
        works, dump = run([*self.ways["x86_64"], *language(name), "-fsyntax-only", "-Xclang", "-ast-dump", file])
        if not works:
            raise RuntimeError(f"include/ does not compile:\n{dump}")
        return dump

    def link_tests(self, objects, program):
        linker = ["-fuse-ld=lld"] if shutil.which("ld.lld") else []
        return run([self.clang, *linker, *SANITIZERS, *objects, "-lgtest_main", "-lgtest", "-lgmock", "-licuuc", "-licudata",
                    "-lBlocksRuntime", "-lpthread", "-Wl,--strip-debug", "-o", program])
