"""The program as it is installed, and the entries of the file managers: from the menu to the phone."""

import hashlib
import json
import os
import pathlib
import re
import shutil
import subprocess
import tempfile
import unittest

import entries
import gi
from support import App, AppTest, TIMEOUT, Process, free_port, run, visible_windows, wait_for

gi.require_version("Gio", "2.0")
from gi.repository import Gio

SOURCE = pathlib.Path(__file__).resolve().parents[2]
BUILD = pathlib.Path(os.environ["VELLOWAY_BUILD"])

APPLICATION = "share/applications/org.velloway.Velloway.desktop"
DOLPHIN = "share/kio/servicemenus/velloway-send.desktop"
NEMO = "share/nemo/actions/velloway-send.nemo_action"
PCMANFM = "share/file-manager/actions/velloway-send.desktop"
SCRIPT = "share/velloway/scripts/Send to Android"
THUNAR = "share/Thunar/sendto/velloway-send.desktop"
ENTRIES = [APPLICATION, DOLPHIN, NEMO, PCMANFM, THUNAR]
VIEWS = "lib/velloway/libvelloway-views.so"
ICON = "share/icons/hicolor/scalable/apps/org.velloway.Velloway.svg"
SYMBOLIC = "share/icons/hicolor/symbolic/apps/org.velloway.Velloway-symbolic.svg"
METAINFO = "share/metainfo/org.velloway.Velloway.metainfo.xml"
SERVICE = "share/dbus-1/services/org.velloway.Velloway.service"
UNIT = "lib/systemd/user/velloway.service"
FIREWALLD = "lib/firewalld/services/velloway.xml"
UFW = "share/velloway/ufw/velloway"
MAN = ["share/man/man1/velloway.1.gz", "share/man/man1/velloway-phone.1.gz"]
DOCUMENTS = ["share/doc/velloway/changelog.gz", "share/doc/velloway/phone-does-not-connect.md"]
PROGRAMS = ["bin/velloway", "bin/velloway-phone"]

# What trips up whoever takes a name for something else. No quotes or backslashes: the announcement of such a file
# is a broken message by the protocol, so that no phone can follow; they have a test of their own.
NAMES = ["two words.bin", "-rf.bin", "it's $HOME `id` & more;.bin", "100% %F %u %%.bin", "Grüße 日本.bin",
         "#1?[a-z]*.bin", "~.bin"]


def safe_name(name):
    """The name under which the phone keeps a file: nothing that a shell or another system could misread."""
    safe = re.sub(r"""["'`$*:<>?|]""", "_", name)
    return "_" + safe if safe.startswith(("-", ".")) else safe


def setUpModule():
    global PREFIX
    folder = tempfile.TemporaryDirectory()
    unittest.addModuleCleanup(folder.cleanup)
    PREFIX = pathlib.Path(folder.name) / "installed here"
    run("cmake", "--install", str(BUILD), "--prefix", str(PREFIX))
    path = os.environ["PATH"]
    unittest.addModuleCleanup(os.environ.__setitem__, "PATH", path)
    os.environ["PATH"] = f"{PREFIX}/bin:{path}"


def files_of(folder):
    return sorted(str(path.relative_to(folder)) for path in folder.rglob("*") if path.is_file())


class Tree(unittest.TestCase):
    def test_has_all_its_files(self):
        self.assertEqual(files_of(PREFIX), sorted([*PROGRAMS, VIEWS, ICON, SYMBOLIC, METAINFO, SERVICE, UNIT, FIREWALLD,
                                                   UFW, *MAN, *DOCUMENTS, SCRIPT, *ENTRIES]))

    def test_names_no_folder_of_the_place_where_it_was_built(self):
        for name in files_of(PREFIX):
            data = (PREFIX / name).read_bytes()
            for folder in (BUILD, SOURCE, PREFIX):
                self.assertNotIn(bytes(folder), data, name)
        for name in (*PROGRAMS, VIEWS):
            self.assertNotRegex(run("readelf", "-d", str(PREFIX / name)), "R(UN)?PATH")

    def test_is_hardened(self):
        for name in (*PROGRAMS, VIEWS):
            path = str(PREFIX / name)
            with self.subTest(name):
                self.assertIn("GNU_RELRO", run("readelf", "-lW", path))
                self.assertRegex(run("readelf", "-dW", path), r"FLAGS_1.*NOW")
                self.assertIn("DYN (", run("readelf", "-hW", path))
                calls = run("nm", "-D", "--undefined-only", path)
                self.assertIn(" __stack_chk_fail", calls)
        if os.uname().machine == "x86_64":
            # Debian's own start files lack the note that would switch this on, so look for its landing places.
            self.assertGreater(run("objdump", "-d", "--no-show-raw-insn", "-j", ".text",
                                   str(PREFIX / "bin/velloway")).count("endbr64"), 500)
        # A call whose size the compiler cannot see through.
        self.assertRegex(run("nm", "-D", "--undefined-only", str(PREFIX / "bin/velloway")), r" __(?!stack)\w+_chk\b")

    def test_the_man_pages_are_free_of_warnings(self):
        for name in MAN:
            answer = subprocess.run(["man", "--warnings", "--encoding=utf8", "--local-file", str(PREFIX / name)],
                                    capture_output=True, text=True, timeout=TIMEOUT, env=os.environ | {"MANWIDTH": "80"})
            self.assertEqual((answer.returncode, answer.stderr), (0, ""), name)
            self.assertIn("SYNOPSIS", answer.stdout)
        # They know every option of what they describe.
        for program, page in zip(PROGRAMS, MAN):
            text = run("man", "--local-file", str(PREFIX / page), env=os.environ | {"MANWIDTH": "200"})
            text = re.sub(".\b", "", text)
            for option in re.findall(r"(?m)^  (--[a-z-]+)", run(str(PREFIX / program), "--help")):
                self.assertIn(option, text, program)

    def test_the_metainfo_is_valid_and_names_what_is_installed(self):
        report = subprocess.run(["appstreamcli", "validate", "--no-net", "--strict", "--explain", str(PREFIX / METAINFO)],
                                capture_output=True, text=True, timeout=TIMEOUT)
        # The project has no home page yet, which is its owner's to add.
        findings = re.findall(r"^[EWIP]: \S+ ([a-z-]+)", report.stdout, re.M)
        self.assertLessEqual({*findings}, {"url-homepage-missing"}, report.stdout)
        text = (PREFIX / METAINFO).read_text()
        version = run(str(PREFIX / "bin/velloway"), "--version").split()[1]
        self.assertIn(f'<release version="{version}"', text)
        for name in (APPLICATION, SERVICE):
            self.assertIn(pathlib.Path(name).stem, text)

    def test_the_unit_is_valid(self):
        answer = subprocess.run(["systemd-analyze", "verify", "--user", "--man=no", str(PREFIX / UNIT)],
                                capture_output=True, text=True, timeout=TIMEOUT)
        ours = [line for line in (answer.stdout + answer.stderr).splitlines() if "velloway" in line.lower()]
        self.assertEqual(ours, [], answer.stderr)

    def test_the_firewall_profiles_open_the_port_that_the_program_listens_on(self):
        import xml.etree.ElementTree
        service = xml.etree.ElementTree.parse(PREFIX / FIREWALLD).getroot()
        self.assertEqual([port.attrib for port in service.iter("port")], [{"protocol": "tcp", "port": "8765"}])
        profile = entries.read(PREFIX / UFW)
        self.assertEqual(profile["Velloway"]["ports"], "8765/tcp")
        self.assertRegex((SOURCE / "src/server/WebSocketServer.h").read_text(), r"defaultPort = 8765;")

    def test_the_package_files_of_other_systems_hold_to_their_format(self):
        recipe = SOURCE / "packaging/linux/arch/PKGBUILD"
        run("bash", "-n", str(recipe))
        self.assertEqual(run("bash", "-c", f'. "{recipe}"; echo $pkgver').strip(),
                         run(str(PREFIX / "bin/velloway"), "--version").split()[1])
        manifest = SOURCE / "packaging/linux/flatpak/org.velloway.Velloway.yml"
        self.assertRegex(manifest.read_text(), r"(?m)^id: org\.velloway\.Velloway$")
        if shutil.which("flatpak-builder"):
            with tempfile.TemporaryDirectory() as folder:  # it leaves a state of its own where it runs
                shown = json.loads(run("flatpak-builder", "--show-manifest", str(manifest), cwd=folder))
            self.assertEqual(shown["command"], "velloway")

    def test_entries_for_the_application_hold_to_the_format(self):
        for name in (APPLICATION, THUNAR):
            self.assertEqual(run("desktop-file-validate", "--warn-kde", str(PREFIX / name)), "", name)

    def test_entries_call_the_program_and_show_the_icon_that_are_there(self):
        self.assertEqual(shutil.which("velloway"), str(PREFIX / "bin/velloway"))
        for name in ENTRIES:
            groups = {group: text for group, text in entries.read(PREFIX / name).items()
                      if not (name == APPLICATION and group != "Desktop Entry")}
            values = {key: text for group in groups.values() for key, text in group.items()}
            self.assertEqual(values["Exec"].split()[0], "velloway", name)
            self.assertEqual(values.get("TryExec", values.get("Dependencies", "")).rstrip(";"), "velloway", name)
            self.assertEqual(values.get("Icon", values.get("Icon-Name")), pathlib.Path(ICON).stem, name)

    def test_what_must_be_executable_for_its_file_manager_is(self):
        for name in (DOLPHIN, SCRIPT):
            self.assertTrue(os.access(PREFIX / name, os.X_OK), name)

    def test_no_file_is_opened_with_it_unasked(self):
        run("update-desktop-database", str(PREFIX / "share/applications"))
        environment = dict(os.environ, XDG_DATA_DIRS=f"{PREFIX}/share:/usr/share")
        for kind in ("application/octet-stream", "text/plain"):
            self.assertNotIn("velloway", run("gio", "mime", kind, env=environment).lower())
        # It can be chosen all the same.
        self.assertTrue(Gio.DesktopAppInfo.new_from_filename(str(PREFIX / APPLICATION)).supports_uris())


class Package(AppTest):
    """The Debian package, unpacked but not installed."""

    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(folder.cleanup)
        cls.folder = pathlib.Path(folder.name)
        subprocess.run(["cpack", "-G", "DEB", "-B", str(cls.folder), "--config", str(BUILD / "CPackConfig.cmake")],
                       check=True, capture_output=True, text=True, timeout=120)
        (cls.package,) = cls.folder.glob("velloway_*.deb")

    def test_holds_what_is_installed_and_starts(self):
        run("dpkg-deb", "--extract", str(self.package), str(self.folder / "root"))
        self.assertEqual(files_of(self.folder / "root/usr"), files_of(PREFIX))
        self.assertEqual(files_of(self.folder / "root/etc"), ["ufw/applications.d/velloway"])
        self.start(App(free_port(), program=str(self.folder / "root/usr/bin/velloway"))).wait_listening()

    def test_needs_what_the_program_is_linked_with_and_what_it_loads_by_name(self):
        needed = run("dpkg-deb", "--field", str(self.package), "Depends")
        packages = {each.split()[0] for each in needed.split(",")}
        self.assertLessEqual({"libc6", "libqt6quick6", "libxcb-xtest0"}, packages)
        imported = {line.split()[1] for view in (SOURCE / "src/ui").rglob("*.qml")
                    for line in view.read_text().splitlines() if re.match(r"import Qt", line)}
        for module in imported:
            folder = "/usr/lib/*/qt6/qml/" + module.removesuffix(".Basic").replace(".", "/")
            (owner,) = {line.split(":")[0] for line in run("dpkg", "--search", f"{folder}/qmldir").splitlines()}
            self.assertIn(owner, packages, module)
        self.assertNotIn("xvfb", packages)
        recommended = run("dpkg-deb", "--field", str(self.package), "Recommends").strip()
        for each in ("qt6-wayland", "xdg-utils", "xdg-desktop-portal", "wireplumber | pulseaudio-utils", "fonts-inter",
                     "fonts-noto-cjk"):
            self.assertIn(each, recommended.split(", "))

    def test_is_clean_but_for_the_licence_that_its_owner_has_not_chosen(self):
        report = subprocess.run(["lintian", "--tag-display-limit", "0", "--allow-root", "--no-cfg", str(self.package)],
                                capture_output=True, text=True, timeout=120)
        findings = re.findall(r"^[EW]: velloway: (\S+)", report.stdout, re.M)
        self.assertEqual(findings, ["no-copyright-file"], report.stdout + report.stderr)


class Expansion(AppTest):
    """Our reading of an Exec line against that of the library under most file managers."""

    def setUp(self):
        self.folder = self.make_folder()
        self.record = self.folder / "record"
        recorder = self.folder / "bin" / "velloway"
        recorder.parent.mkdir()
        recorder.write_text(f"#!/bin/sh\nprintf '%s\\0' \"$@\" >'{self.record}.part'\n"
                            f"mv '{self.record}.part' '{self.record}'\n")
        recorder.chmod(0o755)
        self.addCleanup(os.environ.__setitem__, "PATH", os.environ["PATH"])
        os.environ["PATH"] = f"{recorder.parent}:{os.environ['PATH']}"

    def launched(self, entry, files):
        self.record.unlink(missing_ok=True)
        application = Gio.DesktopAppInfo.new_from_filename(str(entry))
        self.assertTrue(application.launch([Gio.File.new_for_path(str(file)) for file in files], None))
        wait_for(self.record.exists, "the start that was recorded")
        return self.record.read_bytes().decode().split("\0")[:-1]

    def test_is_the_same_for_every_entry_of_an_application(self):
        files = [self.folder / name for name in [*NAMES, 'say "hello".bin', "back\\slash.bin"]]
        # As where programs are not started over the bus.
        plain = self.folder / "plain.desktop"
        plain.write_text((PREFIX / APPLICATION).read_text().replace("DBusActivatable=true", "DBusActivatable=false"))
        for entry in (plain, PREFIX / THUNAR):
            words = entries.command(entries.read(entry)["Desktop Entry"]["Exec"], files)
            self.assertEqual(words, ["velloway", *map(str, files)])
            self.assertEqual(self.launched(entry, files), words[1:])

    def test_is_the_same_for_words_in_quotes(self):
        files = [self.folder / name for name in [*NAMES, 'say "hello".bin', "back\\slash.bin"]]
        entry = self.folder / "other.desktop"
        # Each backslash stands twice, because the text of every key has escapes of its own.
        line = r'velloway "two words" "\\"\\$\\\\" plain %F'
        entry.write_text(f"[Desktop Entry]\nType=Application\nName=Other\nExec={line}\n")
        words = entries.command(entries.read(entry)["Desktop Entry"]["Exec"], files)
        self.assertEqual(words[1:4], ["two words", '"$\\', "plain"])
        self.assertEqual(self.launched(entry, files), words[1:])


class Sending(AppTest):
    def setUp(self):
        self.tray = self.use_tray()
        self.service = self.use_notification_service(["body", "actions"])
        parent = self.make_folder()
        self.folder = parent / "a folder"
        self.folder.mkdir()
        self.phone_folder = parent / "phone"
        self.phone_folder.mkdir()

    def make(self, *names):
        files = [self.folder / name for name in names]
        for number, file in enumerate(files):
            file.write_bytes(os.urandom(1000 + 700_000 * number))
        return files

    def start_installed(self, *words):
        return self.start(App(free_port(), *words, program="velloway", cwd="/"))

    def start_saving_phone(self, count):
        saving = self.start_phone(self.app.port, "--save-to", str(self.phone_folder), "--exec",
                                  '; '.join(['expect {"action":"file_chunk","isLast":true} 60'] * count))
        saving.wait_line("< connected")
        return saving

    def choose(self, words, **options):
        """A file manager starts what its entry says, from a folder of no importance."""
        start = self.start(Process(*words, **{"cwd": "/", **options}))
        self.assertEqual(start.wait_end(), 0, start.lines)

    def triggered(self):
        return [line.removeprefix("[AppDelegate] Service triggered for file: ") for line in list(self.app.lines)
                if line.startswith("[AppDelegate] Service triggered for file: ")]

    def wait_file_drop(self):
        """The main window has come up, and its tab is the one for files."""
        settings = pathlib.Path(os.environ["XDG_CONFIG_HOME"]) / "velloway" / "velloway.conf"
        wait_for(lambda: visible_windows(self.app.pid), "the main window")
        wait_for(lambda: re.search("^selectedSettingsTab=5$", settings.read_text(), re.M), "the tab for files")

    def check_arrival(self, words, **options):
        """Chooses `words` for the files of NAMES; these must come to the phone in this order, byte for byte."""
        self.app = self.start_installed().wait_listening()
        saving = self.start_saving_phone(len(NAMES))
        files = self.make(*NAMES)
        self.choose(words(files), **options)
        self.assertEqual(saving.wait_end(90), 0, "\n".join(saving.lines[-8:]))
        self.assertEqual(self.triggered(), NAMES)
        arrived = [re.fullmatch(r".*\breceived (.*), \d+ bytes as announced", line) for line in saving.lines]
        self.assertEqual([each[1] for each in arrived if each], NAMES)
        for file in files:
            self.assertEqual(hashlib.sha256((self.phone_folder / safe_name(file.name)).read_bytes()).hexdigest(),
                             hashlib.sha256(file.read_bytes()).hexdigest(), file.name)
        self.wait_file_drop()

    def application_command(self, files):
        return entries.command(entries.read(PREFIX / APPLICATION)["Desktop Entry"]["Exec"], files)

    def test_by_open_with(self):
        self.check_arrival(self.application_command)

    def test_by_thunar(self):
        self.check_arrival(
            lambda files: entries.command(entries.read(PREFIX / THUNAR)["Desktop Entry"]["Exec"], files))

    def test_by_dolphin(self):
        groups = entries.read(PREFIX / DOLPHIN)
        action = groups["Desktop Entry"]["Actions"].rstrip(";")
        self.check_arrival(lambda files: entries.command(groups[f"Desktop Action {action}"]["Exec"], files))

    def test_by_nemo(self):
        self.check_arrival(lambda files: entries.nemo_command(entries.read(PREFIX / NEMO)["Nemo Action"], files))

    def test_by_pcmanfm(self):
        groups = entries.read(PREFIX / PCMANFM)
        profile = groups["Desktop Entry"]["Profiles"].rstrip(";")
        self.check_arrival(lambda files: entries.pcmanfm_command(groups[f"X-Action-Profile {profile}"], files))

    def test_by_the_script(self):
        for manager in ("NAUTILUS", "CAJA", "NEMO"):
            with self.subTest(manager):
                uris = "".join(entries.uri(self.folder / name) + "\n" for name in NAMES)
                environment = dict(os.environ, **{f"{manager}_SCRIPT_SELECTED_URIS": uris})
                self.check_arrival(lambda files: [str(PREFIX / SCRIPT), *NAMES], cwd=self.folder, env=environment)
                self.app.stop()

    def test_the_script_with_nothing_selected_starts_nothing(self):
        self.choose([str(PREFIX / SCRIPT)], env=dict(os.environ, NAUTILUS_SCRIPT_SELECTED_URIS=""))

    def test_names_with_quotes_and_backslashes_come_whole_by_every_entry(self):
        self.app = self.start_installed().wait_listening()
        files = self.make('say "hello".bin', "back\\slash.bin", "both \\\" \\' '.bin")
        names = [file.name for file in files]
        nemo = entries.nemo_command(entries.read(PREFIX / NEMO)["Nemo Action"], files)
        pcmanfm = entries.pcmanfm_command(entries.read(PREFIX / PCMANFM)["X-Action-Profile send"], files)
        for number, words in enumerate([self.application_command(files), nemo, pcmanfm], 1):
            self.choose(words)
            wait_for(lambda: self.triggered() == names * number, f"all three names; so far {self.triggered()}")

    def test_a_folder_among_the_files_fails_alone(self):
        self.app = self.start_installed().wait_listening()
        saving = self.start_saving_phone(1)
        (self.folder / "inner").mkdir()
        (file,) = self.make("file.bin")
        self.choose(self.application_command([self.folder / "inner", file]))
        self.assertEqual(saving.wait_end(90), 0)
        self.assertEqual((self.phone_folder / "file.bin").read_bytes(), file.read_bytes())
        self.assertIn("inner", self.service.wait_shown("File Send Failed")["body"])

    def test_with_the_program_not_running_it_starts_and_sends(self):
        files = self.make("one.bin", "two.bin")
        self.app = self.start_installed(*self.application_command(files)[1:])
        wait_for(lambda: self.triggered() == ["one.bin", "two.bin"], "both files")
        self.wait_file_drop()
        # The service may still get what the program of an earlier test had on its way.
        told = {f"Successfully sent '{file.name}' to Android" for file in files}
        wait_for(lambda: told <= {each["body"] for each in self.service.shown}, "both are told")


class NoScreen(unittest.TestCase):
    def test_is_told_in_one_line(self):
        environment = {key: value for key, value in os.environ.items()
                       if key not in ("DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM")}
        for display in ({}, {"DISPLAY": ""}, {"DISPLAY": ":64999"}):
            ended = subprocess.run(["velloway"], env={**environment, **display}, capture_output=True, text=True,
                                   timeout=TIMEOUT)
            self.assertEqual((ended.returncode, ended.stdout), (1, ""))
            self.assertRegex(ended.stderr, r"\AVelloway needs a desktop: .*\n\Z")


if __name__ == "__main__":
    unittest.main()
