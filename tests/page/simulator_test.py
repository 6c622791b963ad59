# SPDX-License-Identifier: Apache-2.0
"""The camera's side: what happens to the camera, and the lines that do the same."""

import re
import unittest

from page_case import PageTest
from webdriver import wait_for

# Puts values into the fields of a form, and submits it.
FILL = """
    const form = document.querySelector(arguments[0]);
    for (const [selector, value] of arguments[1]) {
        const field = form.querySelector(selector);
        field.value = value;
        field.dispatchEvent(new Event('change'));
    }
    form.requestSubmit();
"""


class CameraSide(PageTest):
    """Changes of the camera itself."""

    def setUp(self):
        super().setUp()
        self.browser.press("3")

    def line(self):
        """Returns the command line that the tab shows."""
        return self.browser.text(".control-line code")

    def test_changes_reach_the_camera_and_show_their_line(self):
        self.addCleanup(self.rig.control, "clear")
        self.addCleanup(self.rig.control, "up", "power")
        field = ".simulator .field:has([aria-label='Set Temperature'])"
        # What a person does, what the camera tells then, and the end of the line.
        for what, act, changed, line in (
            (
                "an input",
                lambda: self.browser.click(".simulator .toggle[aria-label='Input 2']"),
                lambda: self.rig.state("alarm", 1)["state"] == 1,
                "set alarm/2 state 1",
            ),
            (
                "a field",
                lambda: self.browser.run(FILL, field, [("input", "-12.5")]),
                lambda: self.rig.state("temperature")["temperature"] == -12500,
                "set temperature/1 temperature -12500",
            ),
            (
                "a service",
                lambda: self.browser.click("[aria-label='Take down power']"),
                lambda: not self.rig.services()["power"]["up"],
                "down power",
            ),
            (
                "a failure",
                lambda: self.browser.run(
                    FILL,
                    ".fault-form",
                    [("label:nth-child(1) select", "fail"), ("label:nth-child(2) select", "iris"), ("[max]", "3")],
                ),
                lambda: self.texts(".faults li span") == ["iris *: fails with status 3, always"],
                "fail iris '*' 3 --always",
            ),
        ):
            with self.subTest(change=what):
                act()
                wait_for(changed, "the camera has changed")
                wait_for(lambda line=line: self.line().endswith(line), f"the line ends with {line}")
        self.rig.control("set", "alarm/2", "state", "0")
        self.rig.control("set", "temperature/1", "temperature", "31500")

    def play(self, name, speed):
        """Starts a scenario."""
        wait_for(lambda: name in self.texts(".scenario-form option"), "the scenarios are known")
        self.browser.run(FILL, ".scenario-form", [("select", name), ("input", speed)])

    def status(self):
        """Returns what the page tells of the scenario."""
        return self.browser.text(".scenario-form ~ [role=status]")

    def test_a_scenario_shows_its_progress_and_its_end(self):
        self.play("warm-up", "1000000")
        wait_for(lambda: self.status() == "Done: warm-up", "the scenario ends")
        self.assertFalse(self.browser.run("return document.querySelector('progress').checkVisibility()"))

    def test_a_scenario_can_be_stopped(self):
        self.addCleanup(lambda: [self.rig.control("up", name) for name in self.rig.services()])
        self.play("drop-services", "20")
        seen = []

        def advances():
            step = re.match(r"drop-services, step (\d+) of \d+: \w+", self.status())
            if step:
                seen.append((int(step[1]), self.browser.run("return document.querySelector('progress').value")))
            return len(seen) > 1 and seen[-1][0] > seen[0][0] and seen[-1][1] > seen[0][1]

        wait_for(advances, "step and bar advance")
        self.assertLess(seen[-1][1], 1)
        self.click("Stop scenario", ".simulator")
        wait_for(lambda: self.status().startswith("Stopped: drop-services"), "the scenario stops")
        self.play("warm-up", "1000000")
        wait_for(lambda: self.status() == "Done: warm-up", "another one can be played")


if __name__ == "__main__":
    unittest.main()
