# SPDX-License-Identifier: Apache-2.0
"""Texts that want to be more than texts: of a camera's file, of managers, and in the page itself."""

import json
import pathlib
import subprocess
import tempfile
import unittest

from page_case import BUILD, PAN, PageTest
from webdriver import wait_for

ELEMENT = "<img src=x onerror=window.hit=1>"
SCRIPT = "</script><script>window.hit=1</script>"
UNSEEN = "\u001b[2J\u202egnp.exe"
SHOWN = "\\u001b[2J\\u202egnp.exe"
COMMUNITY = "<b>&amp;"
USER = "<s>user</s>"
PASSPHRASE = "0123456789"
FILES = tempfile.TemporaryDirectory(prefix="camera.")  # until the end of the program


def camera_file():
    """Writes the dome's file with other texts, and returns its path."""
    shipped = json.loads((pathlib.Path(BUILD) / "share/quarnsnmp/cameras/dome.json").read_text())
    shipped["name"] = ELEMENT + UNSEEN
    shipped["services"]["device_information"]["targets"][0].update(model=SCRIPT, firmware=ELEMENT)
    shipped["services"]["presets_tours"]["targets"][0]["presets"] = [
        {"number": 1, "id": "preset-1", "name": ELEMENT, "pan": 0, "tilt": 0, "zoom": 10}
    ]
    path = pathlib.Path(FILES.name) / "hostile.json"
    path.write_text(json.dumps(shipped))
    return path


class Hostile(PageTest):
    """A camera and managers with texts that want to be more."""

    rig_options = {
        "cameras": (camera_file(), "minimal"),
        "configuration": f'rwcommunity "{COMMUNITY}" 127.0.0.1 -V all\n'
        f'createUser "{USER}" SHA "{PASSPHRASE}"\nrwuser "{USER}" auth\n',
    }


class Texts(Hostile):
    """Texts from outside."""

    def tearDown(self):
        self.assertIsNone(self.browser.run("return window.hit ?? null"))
        self.assertEqual(
            0, self.browser.run("return document.querySelectorAll('main img[onerror], main script, main b').length")
        )
        super().tearDown()

    def set_as(self, *principal):
        """Moves pan as somebody else."""
        subprocess.run(
            ["snmpset", *principal, "-m", "", f"127.0.0.1:{self.rig.cameras[0]['port']}", PAN, "x", "02400000"],
            check=True,
            capture_output=True,
            timeout=30,
        )

    def cells(self, selector):
        """Returns the texts of cells, also of those that are not on display."""
        return self.browser.run(
            "return [...document.querySelectorAll(arguments[0])].map((each) => each.textContent)", selector
        )

    def test_the_texts_of_a_camera_are_texts(self):
        wait_for(lambda: self.browser.text("#title") == ELEMENT + SHOWN, "the name is in the head")
        self.assertIn(ELEMENT, self.browser.run("return document.title"))
        for text in (SCRIPT, ELEMENT):
            wait_for(lambda text=text: text in self.cells(".objects td"), f"the table of objects shows {text}")
        self.assertIn(ELEMENT, self.browser.run("return document.querySelector('.chips button').title"))
        self.assertIn(ELEMENT, self.browser.run("return document.querySelector('.plan-presets title').textContent"))

    def test_the_names_of_managers_are_texts(self):
        for name, principal in (
            (COMMUNITY, ("-v2c", "-c", COMMUNITY)),
            (USER, ("-v3", "-l", "authNoPriv", "-u", USER, "-a", "SHA", "-A", PASSPHRASE)),
        ):
            with self.subTest(name=name):
                self.set_as(*principal)
                wait_for(lambda name=name: any(name in row for row in self.texts(".log .write")), "the log shows it")
                wait_for(
                    lambda name=name: any(f"({name})" in cell for cell in self.cells(".objects [data-column=Written]")),
                    "the table of objects shows it",
                )

    def test_the_start_page_shows_texts(self):
        self.browser.open(self.rig.address)
        wait_for(lambda: ELEMENT + SHOWN in self.texts(".tile strong"), "the name is on the tile")


class Policy(Hostile):
    """What the page could not do if a text became more than that."""

    ATTEMPTS = {
        "script-src-elem": "add('script', (each) => { each.textContent = 'window.hit = 1'; })",
        "script-src-attr": "add('p', (each) => each.setAttribute('onclick', 'window.hit = 1')).click()",
        "style-src-elem": "add('style', (each) => { each.textContent = 'main {display: none}'; })",
        "style-src-attr": "add('p', (each) => each.setAttribute('style', 'color: red'))",
        "connect-src": "fetch('http://127.0.0.1:9/').catch(() => {})",
        "img-src": "add('img', (each) => { each.src = 'http://127.0.0.1:9/x.png'; })",
        "frame-src": "add('iframe', (each) => { each.src = 'http://127.0.0.1:9/'; })",
        "form-action": "add('form', (each) => { each.action = 'http://127.0.0.1:9/'; }).submit()",
        "base-uri": "add('base', (each) => { each.href = 'http://127.0.0.1:9/'; })",
    }

    def test_the_browser_refuses_what_the_page_never_does(self):
        self.browser.run(
            """
            window.refused = [];
            document.addEventListener('securitypolicyviolation', (event) => refused.push(event.effectiveDirective));
            window.add = (tag, change) => {
                const each = document.createElement(tag);
                change(each);
                document.body.append(each);
                return each;
            };
            """
        )
        for directive, attempt in self.ATTEMPTS.items():
            with self.subTest(directive=directive):
                self.browser.run(attempt)
                wait_for(lambda directive=directive: directive in self.browser.run("return refused"), "it is refused")
        self.assertIsNone(self.browser.run("return window.hit ?? null"))
        # The browser reports each attempt on the console.
        errors = self.browser.console_errors()
        self.assertEqual([], [error for error in errors if "Content Security Policy" not in error])
        self.browser.requests()


if __name__ == "__main__":
    unittest.main()
