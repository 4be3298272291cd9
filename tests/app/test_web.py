"""The page for a phone's browser, in a real browser with touch emulation, against the real program.

The browser is driven through a pipe; the desktop is watched from outside, through the X server.
"""

import hashlib
import os
import pathlib
import re
import tempfile
import time
import unittest

from chromium import CHROMIUM, CONTRASTS, MISFITS, Chromium, Pointer, Relay
from support import APP, TIMEOUT, AppTest, Process, clipboard, run, stays, turn, visible_windows, wait_for

PAGE = pathlib.Path(__file__).parents[2] / "tools" / "phone" / "web" / "phone.html"
MEGABYTE = 1_000_000
FRAME = 1 / 60


def digest(path):
    return hashlib.sha256(pathlib.Path(path).read_bytes()).hexdigest()


@unittest.skipUnless(CHROMIUM, "chromium is not installed; tools/set-up installs it")
class Web(AppTest):
    def setUp(self):
        self.tray = self.use_tray()
        self.service = self.use_notification_service(["body", "actions"])
        folder = tempfile.TemporaryDirectory(ignore_cleanup_errors=True)
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.app = self.start_app().wait_listening()
        self.relay = Relay(self.app.port)
        self.addCleanup(self.relay.close)
        self.page = self.start(Chromium(self.folder, f"{PAGE.as_uri()}#127.0.0.1:{self.relay.port}"))
        self.wait_connected()
        self.pointer = Pointer()
        self.addCleanup(self.pointer.close)
        self.page.js("document.querySelector('#speed').value = '1'")
        run("xdotool", "mousemove", "400", "300")

    def state(self):
        return self.page.js("document.querySelector('#state').textContent")

    def wait_connected(self):
        wait_for(lambda: self.page.js("link.isUp"), "the link of the page")

    def events(self, kind):
        """A window under the pointer that writes down what happens to it."""
        window = self.start(Process("stdbuf", "-oL", "xev", "-geometry", "600x400+100+100", "-event", kind))
        number = re.search(r"0x[0-9a-f]+", window.wait_line("Outer window"))[0]
        wait_for(lambda: "IsViewable" in run("xwininfo", "-id", number), "the window on screen")
        run("xdotool", "windowfocus", "--sync", number)
        return window

    def test_moves_arrive_as_they_were_made_and_only_taps_click(self):
        window = self.events("button")
        self.page.picture("web-360-pad-first")
        x, y = self.page.centre("#pad")
        self.page.touch("touchStart", (x, y))
        for step in range(1, 11):
            self.page.touch("touchMove", (x + 3 * step, y - 2 * step))
        self.page.touch("touchEnd")
        wait_for(lambda: self.pointer.place() == (430, 280), f"the pointer at (430, 280), not {self.pointer.place()}")
        self.page.tap("#pad")
        window.wait_line(r"button 1,")
        self.page.touch("touchStart", (x - 40, y))
        self.page.touch("touchStart", (x - 40, y), (x + 40, y))
        self.page.touch("touchEnd")
        window.wait_line(r"button 3,")
        presses = [line for line in window.lines if line.startswith("ButtonPress")]
        self.assertEqual(len(presses), 2, window.lines)
        self.assertEqual(self.pointer.place(), (430, 280))

    def test_two_fingers_that_slide_do_nothing_at_all(self):
        window = self.events("button")
        x, y = self.page.centre("#pad")
        self.page.touch("touchStart", (x - 40, y))
        self.page.touch("touchStart", (x - 40, y), (x + 40, y))
        for step in range(1, 8):
            self.page.touch("touchMove", (x - 40, y + 10 * step), (x + 40, y + 10 * step))
        self.page.touch("touchEnd")
        # A tap afterwards shows that everything before has arrived.
        self.page.tap("#pad")
        window.wait_line(r"button 1,")
        self.assertEqual(self.pointer.place(), (400, 300))
        self.assertEqual(len([line for line in window.lines if line.startswith("ButtonPress")]), 1)

    def test_the_first_move_leaves_within_a_frame_and_the_rest_once_a_frame(self):
        self.page.js("""(() => {
          window.sent = [];
          const send = link.send;
          link.send = function (message) { sent.push([performance.now(), message.type]); return send.call(this, message); };
          for (const type of ["pointermove", "pointerrawupdate"])
            document.querySelector("#pad").addEventListener(type, (event) => { window.first ??= event.timeStamp; }, true);
        })()""")
        x, y = self.page.centre("#pad")
        figures = []
        waits = []
        self.page.touch("touchStart", (x, y))
        for step in range(1, 31):
            self.page.js("window.first = undefined; sent.length = 0")
            before = self.pointer.place()
            begin = time.monotonic()
            number = self.page.post("Input.dispatchTouchEvent", type="touchMove",
                                    touchPoints=[{"x": x + 2 * step, "y": y, "id": 0}])
            while self.pointer.place() == before:
                self.assertLess(time.monotonic() - begin, TIMEOUT, "the pointer has not moved")
            figures.append(time.monotonic() - begin)
            wait_for(lambda: self.page.replies.pop(number, None), "the answer to the touch")
            waits.append(self.page.js("sent[0][0] - first") / 1000)
        self.page.touch("touchEnd")
        figures.sort()
        waits.sort()
        print(f"from the touch, as it is given to the browser, to the moved pointer: median "
              f"{figures[15] * 1000:.1f} ms, best {figures[0] * 1000:.1f} ms, worst {figures[-1] * 1000:.1f} ms; "
              f"of that within the page, from the event to the message: median {waits[15] * 1000:.1f} ms, "
              f"worst {waits[-1] * 1000:.1f} ms")
        self.assertLess(waits[15], FRAME)
        # A burst of moves within the page becomes one message a frame.
        counts = self.page.js("""(async () => {
          const pad = document.querySelector("#pad");
          const fire = (type, x) => pad.dispatchEvent(new PointerEvent(type, {pointerId: 7, clientX: x, clientY: 9, bubbles: true}));
          sent.length = 0;
          fire("pointerdown", 0);
          for (let x = 1; x <= 50; x += 1) fire("pointermove", x);
          await new Promise((go) => requestAnimationFrame(() => requestAnimationFrame(go)));
          fire("pointerup", 50);
          return sent.length;
        })()""")
        self.assertEqual(counts, 2)

    def test_typed_text_its_corrections_and_keys_arrive(self):
        typed = pathlib.Path(os.environ["HOME"]) / "typed.txt"
        terminal = self.start(Process("xterm", "-u8", "-e", "sh", "-c", f"head -n 2 > '{typed}'"))
        window = wait_for(lambda: visible_windows(terminal.pid), "the terminal").pop()
        run("xdotool", "windowfocus", "--sync", str(window))
        self.page.show("keys")
        self.page.tap("#typing")
        self.page.do("Input.insertText", text="grüße ")
        # A screen keyboard composes a word, then corrects it.
        self.page.do("Input.imeSetComposition", text="te", selectionStart=2, selectionEnd=2)
        self.page.do("Input.imeSetComposition", text="teh", selectionStart=3, selectionEnd=3)
        self.page.do("Input.insertText", text="the")
        self.page.do("Input.insertText", text=" endd")
        self.page.do("Input.dispatchKeyEvent", type="keyDown", key="Backspace", windowsVirtualKeyCode=8)
        self.page.do("Input.dispatchKeyEvent", type="keyDown", key="Enter", windowsVirtualKeyCode=13)
        self.page.do("Input.insertText", text="2")
        self.page.tap("[data-key=key_return]")
        wait_for(lambda: typed.exists() and typed.read_text() == "grüße the end\n2\n",
                 f"the text; so far {typed.read_text() if typed.exists() else None!r}")

    def test_modifiers_go_with_the_next_key_and_a_held_arrow_repeats(self):
        window = self.events("keyboard")
        self.page.show("keys")
        self.page.tap("[data-modifier=ctrl]")
        self.page.tap("[data-modifier=shift]")
        self.page.tap("[data-key=key_left]")
        window.wait_line(r"keysym 0xff51, Left")
        held = next(line for line in window.lines if "0xff51" in line)
        self.assertIn("state 0x5", held)
        self.page.tap("[data-key=key_up]")
        self.assertIn("state 0x0", window.wait_line(r"keysym 0xff52, Up"))
        x, y = self.page.centre("[data-key=key_down]")
        self.page.touch("touchStart", (x, y))
        wait_for(lambda: sum("0xff54" in line for line in window.lines) >= 6, "a repeated Down")
        self.page.touch("touchEnd")
        turn(0.3)
        count = sum("0xff54" in line for line in window.lines)
        stays(lambda: sum("0xff54" in line for line in window.lines) == count, "no more Down", 0.5)

    def test_a_presenter_and_a_player_press_their_keys(self):
        window = self.events("keyboard")
        self.page.show("slides")
        self.page.tap("[data-command=slide_next]")
        window.wait_line(r"keysym 0xff53, Right")
        self.page.tap("[data-command=slide_prev]")
        window.wait_line(r"keysym 0xff51, Left")
        self.page.show("media")
        self.page.tap("[data-media=play_pause]")
        window.wait_line(r"XF86AudioPlay")

    def test_text_goes_to_either_clipboard(self):
        self.page.show("share")
        self.page.js("document.querySelector('#text').value = 'a \"quoted\" / text\\nin two lines 🚲'")
        self.page.tap("#copy-out")
        wait_for(lambda: clipboard() == "a \"quoted\" / text\nin two lines 🚲", "the text on the computer's clipboard")
        self.copy("back \\ to the phone")
        self.tray.choose("Send Clipboard")
        wait_for(lambda: self.page.js("document.querySelector('#received').value") == "back \\ to the phone",
                 "the text on the page")

    def test_100_mb_are_whole_in_either_direction(self):
        path = self.folder / "from the phone.bin"
        path.write_bytes(os.urandom(100 * MEGABYTE))
        self.page.show("share")
        begin = time.monotonic()
        self.page.choose_file("#files", path)
        line = "document.querySelector('#transfers p')?.textContent"
        wait_for(lambda: "All 100,000,000 bytes" in (self.page.js(line) or ""), "the file has left the page", 120)
        target = self.app.downloads / path.name
        wait_for(lambda: target.exists() and target.stat().st_size == 100 * MEGABYTE, "the file on the computer", 60)
        print(f"100 MB to the computer: {time.monotonic() - begin:.1f} s")
        self.assertEqual(digest(target), digest(path))

        back = self.folder / "from the computer.bin"
        back.write_bytes(os.urandom(100 * MEGABYTE))
        self.page.do("Browser.setDownloadBehavior", behavior="allow", downloadPath=str(self.folder / "saved"))
        begin = time.monotonic()
        self.assertEqual(self.start(Process(APP, str(back))).wait_end(), 0)
        wait_for(lambda: "100,000,000 bytes, as announced" in (self.page.js(line) or ""), "the file on the page", 120)
        print(f"100 MB to the page: {time.monotonic() - begin:.1f} s")
        self.page.picture("web-360-share-files")
        self.page.tap("#transfers a")
        saved = self.folder / "saved" / back.name
        wait_for(lambda: saved.exists() and saved.stat().st_size == 100 * MEGABYTE, "the saved file", 60)
        self.assertEqual(digest(saved), digest(back))

    def test_a_file_that_comes_short_is_not_offered(self):
        self.page.js("""hear('{"action":"file_transfer_start","fileName":"a.bin","fileSize":7}');
                        hear('{"action":"file_chunk","fileName":"a.bin","fileData":"Zm9v","isLast":true}')""")
        self.assertIn("3 bytes arrived, but 7", self.page.js("document.querySelector('#transfers p').textContent"))
        self.assertIsNone(self.page.js("document.querySelector('#transfers a')"))

    def first_transfer(self):
        return self.page.js("document.querySelector('#transfers li')?.textContent") or ""

    def test_a_file_with_quotes_in_its_name_and_an_empty_one_arrive(self):
        for name, end in (('a "quoted" \\ name.txt', "5 bytes; the size was not announced"),
                          ("empty.txt", "0 bytes, as announced")):
            path = self.folder / name
            path.write_text("" if "empty" in name else "hello")
            self.assertEqual(self.start(Process(APP, str(path))).wait_end(), 0)
            wait_for(lambda: name in self.first_transfer() and end in self.first_transfer(), f"{name} on the page")
        texts = self.page.js("""Promise.all([...document.querySelectorAll("#transfers a")].map(
            async (each) => [each.download, await (await fetch(each.href)).text()]))""")
        self.assertEqual(texts, [["empty.txt", ""], ['a "quoted" \\ name.txt', "hello"]])

    def test_half_a_file_from_the_computer_is_not_offered(self):
        path = self.folder / "half.bin"
        path.write_bytes(os.urandom(100 * MEGABYTE))
        already = self.relay.carried
        self.start(Process(APP, str(path)))
        wait_for(lambda: self.relay.carried > already + 5 * MEGABYTE, "5 MB on their way")
        self.relay.cut()
        wait_for(lambda: "The link broke" in self.first_transfer(), "the page says that the file is not whole")
        self.assertIsNone(self.page.js("document.querySelector('#transfers a')"))

    def test_the_link_drops_in_mid_file_and_returns(self):
        path = self.folder / "again.bin"
        path.write_bytes(os.urandom(30 * MEGABYTE))
        self.page.show("share")
        already = self.relay.carried
        self.page.choose_file("#files", path)
        wait_for(lambda: self.relay.carried > already + 5 * MEGABYTE, "5 MB on their way")
        self.relay.cut()
        wait_for(lambda: "trying again" in self.state(), f"the page says that the link has gone, not {self.state()}")
        self.page.picture("web-360-share-cut")
        self.assertEqual(self.page.js("document.querySelector('#transfers .good')"), None)
        self.relay.mend()
        wait_for(lambda: "All 30,000,000 bytes" in self.page.js("document.querySelector('#transfers p').textContent"),
                 "the file has left the page", 60)
        target = self.app.downloads / path.name
        wait_for(lambda: target.exists() and digest(target) == digest(path), "the whole file")
        self.page.js("document.querySelector('#transfers').replaceChildren()")
        self.page.show("pad")
        x, y = self.page.centre("#pad")
        self.page.touch("touchStart", (x, y))
        self.page.touch("touchMove", (x + 25, y))
        self.page.touch("touchEnd")
        wait_for(lambda: self.pointer.place() == (425, 300), "a move after the return")

    def test_the_address_is_remembered(self):
        self.page.do("Page.navigate", url="about:blank")
        self.page.open(PAGE.as_uri())
        self.wait_connected()
        self.assertEqual(self.page.js("document.querySelector('#host').value"), f"127.0.0.1:{self.relay.port}")

    def test_a_phone_to_be_found_rings_until_it_is_stopped(self):
        self.page.tap("#pad")
        # No control of the program sends this message, so the page is handed it directly.
        self.page.js("""hear('{"action":"find_device"}')""")
        wait_for(lambda: self.page.js("document.querySelector('#alarm').open"), "the alarm")
        wait_for(lambda: self.page.js("alarm.context.state") == "running", "a sound")
        self.page.picture("web-360-alarm")
        self.page.tap("#alarm button")
        self.assertFalse(self.page.js("document.querySelector('#alarm').open"))

    def test_what_a_browser_cannot_do_is_said(self):
        self.page.js("""hear('{"action":"make_call","number":"+49 151","simSlot":0}')""")
        self.assertIn("A browser cannot call +49 151.", self.page.js("document.querySelector('#note span').textContent"))
        self.assertEqual(self.page.js("document.querySelector('#note a').getAttribute('href')"), "tel:%2B49%20151")
        self.page.js("""hear('{"action":"nav_command","command":"home"}')""")
        self.assertIn("press this phone’s home", self.page.js("document.querySelector('#note span').textContent"))

    def test_every_section_fits_every_width_in_light_and_dark(self):
        for width, height in ((360, 640), (600, 900), (900, 700)):
            for is_dark in (False, True):
                self.page.shape(width, height, is_dark)
                for section in ("pad", "keys", "media", "slides", "share", "more"):
                    if section == "pad" and width >= 700:
                        continue
                    where = f"{width} {'dark' if is_dark else 'light'} {section}"
                    self.page.show(section)
                    wait_for(lambda: self.page.js(f"document.querySelector('#tab-{section}').ariaSelected") == "true", where)
                    self.page.js("document.activeElement.blur()")
                    self.page.picture(f"web-{width}-{'dark' if is_dark else 'light'}-{section}")
                    self.assertEqual(self.page.js(MISFITS), [], where)
                    self.assertEqual(self.page.js(CONTRASTS), [], where)

    def test_what_comes_over_the_page_fits_and_can_be_read(self):
        self.page.show("share")
        self.relay.cut()
        wait_for(lambda: "trying again" in self.state(), "the page says that the link has gone")
        for width, height in ((360, 640), (900, 700)):
            for is_dark in (False, True):
                self.page.shape(width, height, is_dark)
                where = f"{width}-{'dark' if is_dark else 'light'}"
                self.page.js("""hear('{"action":"send_sms","number":"+49 151 5551000","body":"x","simSlot":0}')""")
                self.page.js("link.show('Looking for a-computer-with-a-long-name.example.org:8765')")
                self.assertEqual((self.page.js(MISFITS), self.page.js(CONTRASTS)), ([], []), f"{where}, a note")
                self.page.picture(f"web-{where}-note")
                self.page.js("alarm.start()")
                self.assertEqual((self.page.js(MISFITS), self.page.js(CONTRASTS)), ([], []), f"{where}, the alarm")
                self.page.picture(f"web-{where}-alarm")
                self.page.js("alarm.stop()")

    def test_every_control_has_a_name(self):
        self.page.do("Accessibility.enable")
        seen = set()
        for section in ("pad", "keys", "media", "slides", "share", "more"):
            self.page.show(section)
            for part in self.page.do("Accessibility.getFullAXTree")["nodes"]:
                role = part.get("role", {}).get("value")
                if role in ("button", "textbox", "slider", "tab", "application", "progressbar") and not part["ignored"]:
                    seen.add(role)
                    self.assertTrue(part.get("name", {}).get("value"), f"{role} in {section} has no name")
        self.assertLessEqual({"button", "textbox", "slider", "tab", "application"}, seen)


if __name__ == "__main__":
    unittest.main()
