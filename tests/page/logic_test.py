# SPDX-License-Identifier: Apache-2.0
"""Runs the tests of the page's modules in a browser, without a camera."""

import functools
import http.server
import os
import pathlib
import threading
import unittest

from webdriver import Browser, wait_for

HERE = pathlib.Path(__file__).parent
PAGE = pathlib.Path(os.environ.get("QUARNSNMP_PAGE", HERE / "../../panel/page"))


class Handler(http.server.SimpleHTTPRequestHandler):
    """Serves the page's modules, and the test among them."""

    def do_GET(self):
        if self.path == "/test.html":
            self.send_response(200)
            self.send_header("Content-Type", "text/html")
            self.end_headers()
            self.wfile.write(
                b'<!doctype html><title>test</title><link rel="icon" href="icon.svg">'
                b'<script type="module" src="logic_test.js"></script>'
            )
        else:
            super().do_GET()

    def translate_path(self, path):
        return str(HERE / "logic_test.js") if path == "/logic_test.js" else super().translate_path(path)

    def log_message(self, *_):
        pass


class Logic(unittest.TestCase):
    """The modules by themselves."""

    def test_all(self):
        server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), functools.partial(Handler, directory=PAGE))
        thread = threading.Thread(target=server.serve_forever)
        thread.start()
        try:
            with Browser() as browser:
                browser.open(f"http://127.0.0.1:{server.server_address[1]}/test.html")
                result = wait_for(lambda: browser.run("return window.testResult ?? null"), "the tests have run")
                self.assertEqual([], result["failures"] + browser.console_errors())
                self.assertGreater(result["count"], 10)
        finally:
            server.shutdown()
            thread.join()
            server.server_close()


if __name__ == "__main__":
    unittest.main()
