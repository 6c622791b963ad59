# SPDX-License-Identifier: Apache-2.0
"""What the page tells of others, and of faults."""

import signal
import time
import unittest

from page_case import PAN, PageTest
from webdriver import wait_for


class Log(PageTest):
    """Requests of others."""

    def test_another_managers_command_appears_decoded_within_a_second(self):
        # The page itself notes the moment, since asking it takes a while on a busy machine.
        self.browser.run(
            """
            new MutationObserver(() => {
                const row = [...document.querySelectorAll('.log .write')].find(
                    (each) => each.textContent.includes('02 40 78 69'));
                if (row) {
                    window.seen ??= {time: Date.now(), text: row.innerText};
                }
            }).observe(document.querySelector('.log'), {childList: true, subtree: true});
            """
        )
        self.assertIsNotNone(self.rig.snmp("set", "private", PAN, "x", "02407869"))
        answered = time.time()
        seen = wait_for(lambda: self.browser.run("return window.seen ?? null"), "the command is in the log")
        self.assertLess(seen["time"] / 1000 - answered, 1.0)
        for part in ("SET", "positionPan", "270.00°", "private", "noError"):
            self.assertIn(part, seen["text"])

    def test_a_paused_log_shows_nothing_new(self):
        rows = "return document.querySelectorAll('.log .record').length"
        self.browser.run(
            "[...document.querySelectorAll('.log-view button')].find((each) => each.textContent === 'Pause').click()"
        )
        before = self.browser.run(rows)
        self.rig.control("set", "alarm/1", "state", "1")
        wait_for(
            lambda: "new while paused" in self.browser.text(".count")
            and not self.browser.text(".count").startswith("0"),
            "an event waits",
        )
        self.assertEqual(before, self.browser.run(rows))
        self.browser.run(
            "[...document.querySelectorAll('.log-view button')].find((each) => each.textContent === 'Pause').click()"
        )
        wait_for(lambda: self.browser.run(rows) > before, "the event appears")

    def test_the_filter_hides_other_records(self):
        self.rig.control("set", "alarm/2", "state", "1")
        self.rig.control("set", "alarm/3", "state", "1")
        self.browser.run("document.querySelector('#log-filter').focus()")
        self.browser.press(*"ALARM/2")
        wait_for(
            lambda: self.browser.run(
                "const rows = [...document.querySelectorAll('.log .record')].map((row) => row.innerText.toLowerCase());"
                "return rows.length > 0 && rows.every((text) => text.includes('alarm/2'))"
            ),
            "only matching records",
        )


class Faults(PageTest):
    """Services that hang, a camera and a server that go."""

    def row(self, name):
        """Returns the text and the class of an object's row."""
        return self.browser.run(
            "const row = [...document.querySelectorAll('.objects tbody tr')].find("
            "(row) => row.querySelector('button').textContent === arguments[0]);"
            "return row ? [row.textContent, row.className] : ['', '']",
            name,
        )

    def test_a_hung_service_is_shown_as_such(self):
        wait_for(
            lambda: "31" in self.row("temperature")[0] and "stale" not in self.row("temperature")[1],
            "the temperature is current",
        )
        self.addCleanup(self.rig.control, "clear")
        self.rig.control("delay", "temperature", "*", "30000", "--always")
        wait_for(lambda: "temperature" in self.condition("Services"), "the head names the service")
        wait_for(
            lambda: "waits for a service" in self.condition("Agent") or "stale" in self.row("temperature")[1],
            "the page says that an answer is missing",
        )
        wait_for(
            lambda: "stale" in self.row("temperature")[1] and "not current" in self.row("temperature")[0],
            "the temperature is not shown as current",
        )
        self.rig.control("clear")
        wait_for(lambda: "stale" not in self.row("temperature")[1], "the temperature is current again", 60)
        wait_for(lambda: self.condition("Agent") == "up", "the agent is up")

    def test_a_service_that_is_down_is_named(self):
        self.addCleanup(self.rig.control, "up", "alarm")
        self.rig.control("down", "alarm")
        wait_for(lambda: self.condition("Services") == "alarm down", "the head names the service")
        self.rig.control("up", "alarm")
        wait_for(lambda: self.condition("Services").endswith("up"), "all services are up")

    def test_a_camera_that_hangs_is_not_current(self):
        camera = self.rig.cameras[0]["camera"]
        camera.send_signal(signal.SIGSTOP)
        try:
            wait_for(
                lambda: self.browser.run("return document.body.classList.contains('old')"), "the page is not current"
            )
            wait_for(lambda: "Position unknown" in self.browser.text(".reading"), "the position is unknown")
        finally:
            camera.send_signal(signal.SIGCONT)
        wait_for(lambda: self.browser.run(self.ready), "the page is current again")

    def test_a_restart_of_the_camera_is_shown(self):
        self.browser.press("3")
        self.browser.run(
            "[...document.querySelectorAll('.simulator button')].find("
            "(each) => each.textContent === 'Restart the camera').click()"
        )
        self.browser.click("dialog[open] button[value=yes]")
        wait_for(lambda: "restarts" in self.condition("Camera"), "the head tells of the restart")
        self.assertIn("No signal", self.browser.text(".veil"))
        wait_for(lambda: self.browser.run(self.ready), "the page is current again")

    def test_a_lost_server_is_shown_and_found_again(self):
        self.network_errors_expected = True
        self.rig.panel.kill()
        self.rig.panel.wait()
        wait_for(lambda: "lost" in self.condition("Server"), "the head tells of the loss")
        wait_for(lambda: "No connection" in self.browser.text(".veil"), "the picture is covered")
        self.assertEqual("unknown", self.condition("Camera"))
        self.rig.panel = self.rig.start_panel()
        wait_for(lambda: self.browser.run(self.ready), "the page is current again")
        self.assertEqual("connected", self.condition("Server"))


if __name__ == "__main__":
    unittest.main()
