"""A browser as a phone's, driven through a pipe; a link that can be cut; the pointer of the X server."""

import base64
import ctypes
import fcntl
import json
import os
import shutil
import socket
import threading

from support import SCREENSHOTS, Process, wait_for

CHROMIUM = shutil.which("chromium") or shutil.which("chromium-browser")


class Chromium(Process):
    """A browser with one page, told what to do over a pair of pipes."""

    def __init__(self, folder, url):
        to_browser, self.commands = os.pipe()
        self.answers, from_browser = os.pipe()

        def take_places():
            # Out of the way first: one of them may be in the other's place.
            ends = [fcntl.fcntl(end, fcntl.F_DUPFD, 10) for end in (to_browser, from_browser)]
            os.dup2(ends[0], 3)
            os.dup2(ends[1], 4)

        super().__init__(
            CHROMIUM, "--headless", "--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run",
            "--disable-background-networking", "--disable-component-update", "--disable-sync",
            "--disable-dev-shm-usage", "--hide-scrollbars",
            f"--user-data-dir={folder}/profile", "--remote-debugging-pipe", "about:blank",
            close_fds=False, preexec_fn=take_places)
        os.close(to_browser)
        os.close(from_browser)
        self.number = 0
        self.replies = {}
        threading.Thread(target=self._listen, daemon=True).start()
        self.session = None
        target = self.do("Target.createTarget", url="about:blank")["targetId"]
        self.session = self.do("Target.attachToTarget", targetId=target, flatten=True)["sessionId"]
        self.do("Page.enable")
        self.do("Emulation.setTouchEmulationEnabled", enabled=True, maxTouchPoints=5)
        self.shape(360, 740)
        self.open(url)

    def _listen(self):
        waiting = b""
        while True:
            block = os.read(self.answers, 1 << 20)
            if not block:
                return
            waiting += block
            *whole, waiting = waiting.split(b"\0")
            for text in whole:
                message = json.loads(text)
                if "id" in message:
                    self.replies[message["id"]] = message

    def post(self, method, **values):
        self.number += 1
        message = {"id": self.number, "method": method, "params": values}
        if self.session:
            message["sessionId"] = self.session
        os.write(self.commands, json.dumps(message).encode() + b"\0")
        return self.number

    def do(self, method, **values):
        number = self.post(method, **values)
        reply = wait_for(lambda: self.replies.pop(number, None), f"an answer to {method}", 60)
        if "error" in reply:
            raise AssertionError(f"{method}: {reply['error']}")
        return reply["result"]

    def open(self, url):
        self.do("Page.navigate", url=url)
        wait_for(lambda: self.js("document.readyState === 'complete' && typeof link === 'object'"), "the page")

    def js(self, expression, **options):
        result = self.do("Runtime.evaluate", expression=expression, returnByValue=True, awaitPromise=True, **options)
        if "exceptionDetails" in result:
            raise AssertionError(result["exceptionDetails"])
        return result["result"].get("value")

    def shape(self, width, height, is_dark=False):
        self.do("Emulation.setDeviceMetricsOverride", width=width, height=height, deviceScaleFactor=2, mobile=True)
        self.do("Emulation.setEmulatedMedia",
                features=[{"name": "prefers-color-scheme", "value": "dark" if is_dark else "light"}])

    def centre(self, selector):
        return self.js(f"""(() => {{
            const part = document.querySelector({json.dumps(selector)});
            part.scrollIntoView({{block: "nearest"}});
            const box = part.getBoundingClientRect();
            return [box.x + box.width / 2, box.y + box.height / 2];
        }})()""")

    def touch(self, kind, *points):
        self.do("Input.dispatchTouchEvent", type=kind,
                touchPoints=[{"x": x, "y": y, "id": number} for number, (x, y) in enumerate(points)])

    def tap(self, selector):
        x, y = self.centre(selector)
        self.touch("touchStart", (x, y))
        self.touch("touchEnd")

    def show(self, section):
        self.tap(f"#tab-{section}")

    def choose_file(self, selector, path):
        part = self.do("Runtime.evaluate", expression=f"document.querySelector({json.dumps(selector)})")
        self.do("DOM.setFileInputFiles", files=[str(path)], objectId=part["result"]["objectId"])

    def picture(self, name):
        SCREENSHOTS.mkdir(parents=True, exist_ok=True)
        data = self.do("Page.captureScreenshot", format="png")["data"]
        (SCREENSHOTS / f"{name}.png").write_bytes(base64.b64decode(data))

    def stop(self):
        super().stop()
        os.close(self.commands)


class Relay:
    """Stands between the page and the program and can be cut, as a wireless network is."""

    def __init__(self, port):
        self.target = port
        self.listener = socket.create_server(("127.0.0.1", 0))
        self.port = self.listener.getsockname()[1]
        self.pairs = []
        self.is_open = True
        self.carried = 0
        threading.Thread(target=self._accept, daemon=True).start()

    def _accept(self):
        while True:
            try:
                near, _ = self.listener.accept()
            except OSError:
                return
            if not self.is_open:
                near.close()
                continue
            far = socket.create_connection(("127.0.0.1", self.target))
            self.pairs.append((near, far))
            threading.Thread(target=self._carry, args=(near, far), daemon=True).start()
            threading.Thread(target=self._carry, args=(far, near), daemon=True).start()

    def _carry(self, source, sink):
        try:
            while block := source.recv(1 << 16):
                self.carried += len(block)
                sink.sendall(block)
        except OSError:
            pass
        for end in (source, sink):
            try:
                end.shutdown(socket.SHUT_RDWR)
            except OSError:
                pass

    def cut(self):
        self.is_open = False
        for pair in self.pairs:
            for end in pair:
                try:
                    end.shutdown(socket.SHUT_RDWR)
                except OSError:
                    pass
            for end in pair:
                end.close()
        self.pairs.clear()

    def mend(self):
        self.is_open = True

    def close(self):
        self.cut()
        self.listener.close()


class Pointer:
    """Where the pointer of the X server is, asked in a fraction of a millisecond."""

    def __init__(self):
        self.x11 = ctypes.CDLL("libX11.so.6")
        self.x11.XOpenDisplay.restype = ctypes.c_void_p
        self.x11.XDefaultRootWindow.restype = ctypes.c_ulong
        self.display = ctypes.c_void_p(self.x11.XOpenDisplay(None))
        self.root = self.x11.XDefaultRootWindow(self.display)

    def place(self):
        window, mask = ctypes.c_ulong(), ctypes.c_uint()
        values = [ctypes.c_int() for _ in range(4)]
        self.x11.XQueryPointer(self.display, ctypes.c_ulong(self.root), ctypes.byref(window), ctypes.byref(window),
                               *map(ctypes.byref, values), ctypes.byref(mask))
        return values[0].value, values[1].value

    def close(self):
        self.x11.XCloseDisplay(self.display)


# Every text against what lies behind it, as a ratio of lightness; 4.5 is what people with weak sight need.
CONTRASTS = """(() => {
  const channels = (text) => (text.match(/[\\d.]+/g) ?? []).map(Number);
  const light = ([r, g, b]) => [r, g, b].map((each) => each / 255)
    .map((each) => each <= 0.03928 ? each / 12.92 : ((each + 0.055) / 1.055) ** 2.4)
    .reduce((sum, each, at) => sum + each * [0.2126, 0.7152, 0.0722][at], 0);
  const behind = (part) => {
    for (let each = part; each; each = each.parentElement) {
      const color = channels(getComputedStyle(each).backgroundColor);
      if (color.length === 3 || color[3] === 1) return color;
    }
    return [255, 255, 255];
  };
  const weak = [];
  for (const part of document.querySelectorAll("body *")) {
    const hasText = [...part.childNodes].some((each) => each.nodeType === 3 && each.data.trim());
    if (!hasText || !part.checkVisibility() || !part.getBoundingClientRect().width || part.closest("script,style")) continue;
    const [a, b] = [light(channels(getComputedStyle(part).color)), light(behind(part))];
    const ratio = (Math.max(a, b) + 0.05) / (Math.min(a, b) + 0.05);
    if (ratio < 4.5 && !part.disabled) weak.push(part.textContent.trim().slice(0, 40) + " " + ratio.toFixed(2));
  }
  return weak;
})()"""

# What sticks out at the sides, and what is too small for a thumb.
MISFITS = """(() => {
  const bad = [];
  for (const part of document.querySelectorAll("button, .file, input, textarea, #pad, p, h2, #note, #status span")) {
    const box = part.getBoundingClientRect();
    if (!part.checkVisibility() || !box.width || part.type === "file") continue;
    if (box.left < 0 || box.right > innerWidth + 0.5) bad.push(`${part.textContent.trim()} leaves the screen`);
    if (part.scrollWidth > part.clientWidth + 1 && part.tagName === "BUTTON") bad.push(`${part.textContent.trim()} is cut off`);
    if (part.matches("button, .file, input, textarea") && (box.height < 44 || box.width < 44))
      bad.push(`${part.id || part.textContent.trim()} is ${box.width} by ${box.height}`);
  }
  if (document.documentElement.scrollWidth > innerWidth) bad.push("the page scrolls sideways");
  return bad;
})()"""
