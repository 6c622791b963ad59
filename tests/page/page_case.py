# SPDX-License-Identifier: Apache-2.0
"""What the tests of the page share."""

import atexit
import os
import re
import unittest

from rig import Rig
from webdriver import Browser, wait_for

BUILD = os.environ.get("QUARNSNMP_BUILD", "build/dev")
PAN = ".1.3.6.1.4.1.1206.4.2.7.4.1.0"
# Clicks the button with a text, in the part of the page that a selector names.
CLICK = """
    const [text, part] = arguments;
    const button = [...document.querySelectorAll(`${part} button`)].find((each) => each.textContent === text);
    if (!button) throw new Error(`there is no button ${text} in ${part}`);
    button.click();
"""
# What a browser logs when the server is gone.
NETWORK_ERRORS = re.compile(
    r"net::ERR_(CONNECTION_REFUSED|INCOMPLETE_CHUNKED_ENCODING|CONNECTION_RESET|EMPTY_RESPONSE)"
)


class PageTest(unittest.TestCase):
    """A page of one camera. Each test also fails with an error on the console, or a request to another server."""

    rig = None
    rig_options = {"cameras": ("dome", "minimal")}
    browser_options = {}
    path = "?camera=0"
    ready = "return document.body.dataset.link === 'up' && !document.body.classList.contains('old')"

    @classmethod
    def setUpClass(cls):
        # One rig serves all classes: its start takes longer than a test.
        if PageTest.rig is None:
            PageTest.rig = Rig(BUILD, watch=True, **cls.rig_options)
            atexit.register(PageTest.rig.close)
        cls.browser = Browser(**cls.browser_options)
        cls.addClassCleanup(cls.browser.close)

    def setUp(self):
        self.network_errors_expected = False
        self.browser.open("about:blank")
        self.browser.console_errors()
        self.browser.requests()
        self.browser.open(self.rig.address + self.path)
        wait_for(lambda: self.browser.run(self.ready), "the page is current")

    def tearDown(self):
        errors = self.browser.console_errors()
        if self.network_errors_expected:
            errors = [error for error in errors if not NETWORK_ERRORS.search(error)]
        self.assertEqual([], errors)
        local = (self.rig.address, "about:", "data:", "blob:" + self.rig.address)
        self.assertEqual([], [url for url in self.browser.requests() if not url.startswith(local)])

    def condition(self, name):
        """Returns the text of a condition in the page's head."""
        return self.browser.run(
            "return [...document.querySelectorAll('#conditions div')].find("
            "(row) => row.firstChild.textContent === arguments[0]).lastChild.textContent",
            name,
        )

    def click(self, text, part="main"):
        """Clicks the button with a text in a part of the page."""
        self.browser.run(CLICK, text, part)

    def texts(self, selector):
        """Returns the texts of all elements that a selector names."""
        return self.browser.run(
            "return [...document.querySelectorAll(arguments[0])].map((each) => each.innerText)", selector
        )

    def drive(self, axis):
        """Returns an axis of the camera."""
        return self.rig.state("positioning")[axis]

    def wait_at_rest(self, *axes):
        """Waits until axes do not move."""
        wait_for(lambda: not any(self.drive(axis)["moving"] for axis in axes), f"{axes} are at rest")

    def place(self, x, y):
        """Returns a point of the picture in the window."""
        box = self.browser.box("#picture")
        return box["x"] + x * box["width"], box["y"] + y * box["height"]
