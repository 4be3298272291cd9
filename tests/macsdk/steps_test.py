#!/usr/bin/env python3
"""Runs ./run and the steps of .ci/mac as on a Mac, with stand-ins for the commands that only a Mac has and for those that
build. Each stand-in records what it was called with."""
import pathlib
import shutil
import subprocess
import tempfile
import unittest

TOP = pathlib.Path(__file__).resolve().parents[2]
COPIED = ("run", "test", ".ci", "tools/checks", "tests/app/node")
RECORDED = ("cmake", "ctest", "open", "osascript", "screencapture", "pkill", "tail", "npm")
ANSWERS = {
    "uname": "echo Darwin",
    "tty": "echo not a tty; exit 1",
    # One package of the list is missing.
    "brew": 'echo "brew $*" >>"$LOG"; [ "$1 $3" != "list simdjson" ]',
    "node": 'echo "node $*" >>"$LOG"; exit "${NODE_ANSWER:-0}"',
}


class StepsTest(unittest.TestCase):
    def setUp(self):
        place = tempfile.TemporaryDirectory()
        self.addCleanup(place.cleanup)
        # Links would lead to the real folders.
        self.folder = pathlib.Path(place.name).resolve() / "commands"
        self.folder.mkdir()
        self.top = self.folder.parent / "velloway"
        for name in COPIED:
            copy = shutil.copytree if (TOP / name).is_dir() else shutil.copy
            (self.top / name).parent.mkdir(parents=True, exist_ok=True)
            copy(TOP / name, self.top / name)
        self.app = self.top / "build/mac/src/app/Velloway.app"
        stand_ins = {name: f'echo "{name} $*" >>"$LOG"' for name in RECORDED} | ANSWERS
        for name, text in stand_ins.items():
            (self.folder / name).write_text(f"#!/bin/sh\n{text}\n")
            (self.folder / name).chmod(0o755)

    def run_on_mac(self, *command, **environment):
        """What the stand-ins have recorded, and the exit code."""
        log = self.folder / "log"
        log.write_text("")
        done = subprocess.run(["/bin/bash", *command], cwd=self.top, capture_output=True, text=True, timeout=60,
                              env={"PATH": f"{self.folder}:/usr/bin:/bin", "LOG": str(log), **environment})
        return log.read_text().splitlines(), done

    def test_run_builds_the_program_and_has_the_system_open_it(self):
        calls, done = self.run_on_mac("run")
        self.assertEqual(done.returncode, 0, done.stderr)
        log = self.top / "build/mac/velloway.log"
        self.assertEqual(calls, ["cmake --preset mac", "cmake --build --preset mac --target velloway",
                                 f"open -W --stdout {log} --stderr {log} {self.app}"])

    def test_test_builds_everything_and_runs_the_tests_of_the_preset(self):
        calls, done = self.run_on_mac("test", "-R", "json")
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertEqual(calls, ["cmake --preset mac", "cmake --build --preset mac",
                                 "ctest --preset mac --parallel 2 -R json"])

    def test_the_hosted_mac_installs_what_is_missing_alone(self):
        calls, _ = self.run_on_mac(".ci/mac", "install")
        self.assertEqual([each for each in calls if each.startswith("brew install")], ["brew install simdjson"])
        wanted = {each.split()[-1] for each in calls if each.startswith("brew list")}
        self.assertEqual(wanted, {"cmake", "ninja", "qt", "boost", "simdjson", "icu4c", "googletest"})

    def test_the_hosted_mac_builds_tests_and_bundles(self):
        for step, expected in (("build", ["cmake --preset mac", "cmake --build --preset mac"]),
                               ("core", ["ctest --preset mac --label-regex ^core$ --no-tests=error"]),
                               ("bundle", ["cmake --build --preset mac --target bundle"])):
            calls, done = self.run_on_mac(".ci/mac", step)
            self.assertEqual((calls, done.returncode), (expected, 0), step)

    def test_the_hosted_mac_starts_the_bundle_waits_for_the_welcome_and_takes_a_picture(self):
        calls, done = self.run_on_mac(".ci/mac", "start")
        self.assertEqual(done.returncode, 0, done.stderr)
        seen = self.top / "build/seen"
        self.assertEqual(calls[:3], [f"open --stdout {seen}/velloway.log --stderr {seen}/velloway.err {self.app}",
                                     "node tools/checks/welcome.js ws://127.0.0.1:8765 60",
                                     f"screencapture -x {seen}/screen.png"])
        self.assertTrue((self.top / "tools/checks/welcome.js").is_file())
        self.assertIn("to quit", calls[3])

    def test_the_hosted_mac_fails_when_there_is_no_welcome_and_takes_the_picture_all_the_same(self):
        calls, done = self.run_on_mac(".ci/mac", "start", NODE_ANSWER="3")
        self.assertEqual(done.returncode, 3)
        self.assertTrue(any(each.startswith("screencapture") for each in calls))

    def test_every_step_of_the_workflow_is_one_that_the_script_has(self):
        workflow = (TOP / ".github/workflows/ci.yml").read_text()
        job = workflow[workflow.index("\n  mac:\n"):]
        steps = [line.split()[-1] for line in job.splitlines() if "run: .ci/mac" in line]
        self.assertEqual(steps, ["install", "build", "core", "bundle", "start"])
        self.assertIn("path: build/seen", job)


if __name__ == "__main__":
    unittest.main()
