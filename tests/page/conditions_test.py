# SPDX-License-Identifier: Apache-2.0
"""What the page tells of faults, and that it shows no old value as the present one."""

import dataclasses
import signal
import unittest
from collections.abc import Callable

from page_case import PageTest
from webdriver import wait_for

# What the page shows of the camera's present state, without the numbers of relays and inputs.
SHOWN = """
    const parts = [
        ['.drive-value, .field:not([hidden]) .field-value', /^/],
        ['.relays .toggle, .simulator .toggle', /^\\d+ /],
        ['.services td:nth-child(2)', /^/],
        ['.plan-card .note', /^/],
    ];
    return parts.flatMap(([selector, number]) => [...document.querySelectorAll(selector)].map(
        (each) => each.textContent.replace(number, '')));
"""
UNKNOWN = {"–", "unknown", "not current"}


@dataclasses.dataclass
class Fault:
    """Something that goes and returns."""

    name: str
    go: Callable[[], None]
    come: Callable[[], None]
    condition: str  # which one of the page's head
    text: str  # what it says
    veil: str  # what covers the picture


class Faults(PageTest):
    """A camera, an agent and a server that go and return, and services that hang."""

    def setUp(self):
        super().setUp()
        wait_for(self.is_current, "all values are current")

    def is_current(self):
        """Tests whether all values are those of this moment."""
        return (
            not UNKNOWN & set(self.browser.run(SHOWN))
            and not self.objects(".stale")
            and len(self.objects(":not(.missing)")) > 20
            and not self.browser.run("return document.querySelector('.veil').checkVisibility()")
            and self.browser.run(self.ready)
            and [self.condition(each) for each in ("Server", "Camera", "Agent")] == ["connected", "up", "up"]
        )

    def objects(self, which):
        """Returns the texts of rows in the table of objects."""
        return self.browser.run(
            "return [...document.querySelectorAll(`.objects tbody tr${arguments[0]}`)].map("
            "(row) => row.textContent)",
            which,
        )

    def send(self, program, number):
        """Sends a signal to the camera or its agent."""
        self.rig.cameras[0][program].send_signal(number)

    def signals(self, program):
        """Returns how a program stops for a while and continues."""
        return (lambda: self.send(program, signal.SIGSTOP)), (lambda: self.send(program, signal.SIGCONT))

    def restart(self):
        """Restarts the camera from the page."""
        self.browser.press("3")
        self.click("Restart the camera", ".simulator")
        self.browser.click("dialog[open] button[value=yes]")

    def end_server(self):
        """Kills the panel's server."""
        self.network_errors_expected = True
        self.rig.panel.kill()
        self.rig.panel.wait()

    def start_server(self):
        """Starts the panel's server again."""
        self.rig.panel = self.rig.start_panel()

    def test_without_a_camera_or_server_nothing_is_shown_as_current(self):
        halt, resume = self.signals("camera")
        for fault in (
            Fault("a camera that hangs", halt, resume, "Camera", "gone", "does not answer"),
            Fault(
                "a camera that ends",
                lambda: self.rig.end("camera"),
                self.rig.start_camera,
                "Camera",
                "gone",
                "No signal: no camera in",
            ),
            Fault("a camera that restarts", self.restart, lambda: None, "Camera", "restarts", "No signal"),
            Fault("a server that ends", self.end_server, self.start_server, "Server", "lost", "No connection"),
        ):
            with self.subTest(fault=fault.name):
                fault.go()
                try:
                    wait_for(lambda fault=fault: fault.text in self.condition(fault.condition), "the head says so")
                    wait_for(lambda fault=fault: fault.veil in self.browser.text(".veil"), "the picture says so")
                    wait_for(lambda: not set(self.browser.run(SHOWN)) - UNKNOWN, "no old value is shown")
                    self.assertIn("Position unknown", self.browser.text(".reading"))
                finally:
                    fault.come()
                wait_for(self.is_current, "the page is current again")

    def test_without_an_agent_no_object_is_current(self):
        halt, resume = self.signals("agent")
        for name, go, come in (
            ("an agent that hangs", halt, resume),
            ("an agent that ends", lambda: self.rig.end("agent"), self.rig.start_agent),
        ):
            with self.subTest(fault=name):
                go()
                try:
                    wait_for(lambda: self.condition("Agent") == "no answer", "the head says so")
                    wait_for(lambda: not self.objects(":not(.stale, .missing)"), "no object is current")
                    self.assertEqual([], [row for row in self.objects(".stale") if "not current" not in row])
                    # The camera itself is there.
                    self.assertEqual("up", self.condition("Camera"))
                    self.browser.press("Escape")
                    wait_for(lambda: "No answer" in (self.browser.text(".outcome") or ""), "a command has no answer")
                finally:
                    come()
                wait_for(self.is_current, "the page is current again")

    def test_a_hung_service_is_shown_as_such(self):
        def temperature(which):
            return [row for row in self.objects(which) if row.startswith("temperature")]

        self.assertEqual(1, len(temperature(":not(.stale)")))
        self.addCleanup(self.rig.control, "clear")
        self.rig.control("delay", "temperature", "*", "30000", "--always")
        wait_for(lambda: "temperature" in self.condition("Services"), "the head names the service")
        wait_for(lambda: "waits for a service" in self.condition("Agent"), "the head tells that the agent waits")
        wait_for(
            lambda: any("not current" in row for row in temperature(".stale")), "the temperature is not current"
        )
        self.rig.control("clear")
        wait_for(self.is_current, "all values are current again")

    def test_a_service_that_is_down_is_named(self):
        self.addCleanup(self.rig.control, "up", "alarm")
        self.rig.control("down", "alarm")
        wait_for(lambda: self.condition("Services") == "alarm down", "the head names the service")
        self.rig.control("up", "alarm")
        wait_for(lambda: self.condition("Services").endswith("up"), "all services are up")


if __name__ == "__main__":
    unittest.main()
