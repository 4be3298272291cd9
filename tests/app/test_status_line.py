"""The status line of the menu while the port is taken, and when it is free again."""

import socket
import unittest

from support import AppTest, stays, wait_for


class StatusLine(AppTest):
    def setUp(self):
        self.tray = self.use_tray()

    def occupy(self):
        taken = socket.socket(socket.AF_INET6)
        self.addCleanup(taken.close)
        taken.setsockopt(socket.IPPROTO_IPV6, socket.IPV6_V6ONLY, 0)
        taken.bind(("::", 0))
        taken.listen()
        return taken

    def test_a_taken_port_is_told_and_tried_again_until_it_is_free(self):
        taken = self.occupy()
        port = taken.getsockname()[1]
        self.start_app(port=port)
        wait_for(lambda: (self.tray.status() or "").startswith("Server: failed – "), "the failure in the menu")
        # One retry fails as well and changes nothing.
        stays(lambda: self.tray.status().startswith("Server: failed – "), "the failure in the menu", 6)
        taken.close()
        wait_for(lambda: self.tray.status() == f"Server: listening on :{port}", "listening again", 8)
        self.start_node(port)


if __name__ == "__main__":
    unittest.main()
