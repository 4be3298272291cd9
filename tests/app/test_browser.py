"""A browser's own WebSocket against the program."""

import json
import pathlib
import shutil
import tempfile
import unittest

from support import AppTest, Process

CHROMIUM = shutil.which("chromium") or shutil.which("chromium-browser")

PAGE = """<!doctype html><meta charset="utf-8"><title>waiting</title><body>waiting</body><script>
const socket = new WebSocket("ws://127.0.0.1:%d/");
socket.onmessage = (event) =>
  socket.send(JSON.stringify({app: "Browser", title: "Welcomed with héllo", body: event.data, key: "b1"}));
</script>"""


@unittest.skipUnless(CHROMIUM, "chromium is not installed; tools/set-up installs it")
class Browser(AppTest):
    def test_a_page_is_welcomed_and_can_speak(self):
        self.tray = self.use_tray()
        service = self.use_notification_service(["body", "actions"])
        app = self.start_app().wait_listening()
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        page = pathlib.Path(folder.name) / "page.html"
        page.write_text(PAGE % app.port)
        self.start(Process(
            CHROMIUM, "--headless", "--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run",
            "--disable-background-networking", "--disable-component-update", "--disable-sync",
            "--disable-dev-shm-usage", f"--user-data-dir={folder.name}/profile", "--remote-debugging-port=0",
            page.as_uri()))
        # The page sends back what it was welcomed with, below its greeting.
        greeting, text = service.wait_shown("Browser")["body"].split("\n", 1)
        self.assertEqual(greeting, "Welcomed with héllo")
        welcome = json.loads(text)
        self.assertEqual(welcome["action"], "connected")
        self.assertTrue(welcome["deviceName"])


if __name__ == "__main__":
    unittest.main()
