# SPDX-License-Identifier: Apache-2.0
"""Moving a camera from the page, with a pointer and with keys alone."""

import re
import unittest

from page_case import PAN, PageTest
from webdriver import Browser, wait_for


class Aimed(PageTest):
    """A camera that looks at 350 and -20 degrees, with twice the widest zoom."""

    def setUp(self):
        self.rig.control("set", "positioning/1", "pan", '{"position": 350000}')
        self.rig.control("set", "positioning/1", "tilt", '{"position": -20000}')
        self.rig.control("set", "positioning/1", "zoom", '{"position": 20}')
        super().setUp()
        wait_for(lambda: "Bearing 350.00°" in self.browser.text(".reading"), "the page shows the position")


class Drags(Aimed):
    """Drags with a mouse."""

    kind = "mouse"

    def drag_to(self, *steps):
        """Carries out steps of a drag."""
        self.browser.pointer(*steps, kind=self.kind)

    def wait_for_velocity(self, axis, what, matches):
        """Waits until the velocity of an axis matches."""
        wait_for(lambda: matches(self.drive(axis)["velocity"]), what)

    def test_the_speed_follows_the_distance_until_the_release(self):
        self.drag_to(("move", *self.place(0.5, 0.5)), ("down",))
        fastest = 0
        for x, what, matches in (
            (0.65, "pan moves to the right", lambda velocity: velocity > 0),
            (0.80, "a longer drag is faster", lambda velocity: velocity > 2 * fastest),
            (0.60, "a shorter drag is slower", lambda velocity: 0 < velocity < fastest / 2),
            (0.30, "a drag to the other side turns back", lambda velocity: velocity < 0),
        ):
            self.drag_to(("move", *self.place(x, 0.5)))
            self.wait_for_velocity("pan", what, matches)
            fastest = max(fastest, self.steady_velocity("pan"))
        self.assertEqual(0, self.drive("tilt")["velocity"])
        self.drag_to(("up",))
        self.wait_at_rest("pan")
        self.assertIn("positionPan", self.browser.text(".exchange-body"))

    def steady_velocity(self, axis):
        """Waits until an axis neither accelerates nor brakes, and returns its velocity."""
        seen = [0, 0]

        def is_steady():
            seen.append(self.drive(axis)["velocity"])
            return seen[-1] != 0 and seen[-1] == seen[-2] == seen[-3]

        wait_for(is_steady, f"{axis} moves steadily")
        return seen[-1]

    def test_a_drag_across_moves_both_axes(self):
        self.drag_to(("move", *self.place(0.5, 0.5)), ("down",), ("move", *self.place(0.35, 0.2)))
        self.wait_for_velocity("pan", "pan moves to the left", lambda velocity: velocity < 0)
        self.wait_for_velocity("tilt", "tilt moves up", lambda velocity: velocity > 0)
        self.drag_to(("up",))
        self.wait_at_rest("pan", "tilt")
        self.assertEqual(0, self.browser.run("return scrollY"))

    def test_a_short_touch_centres(self):
        self.drag_to(("move", *self.place(0.8, 0.7)), ("down",), ("up",))
        wait_for(lambda: self.drive("pan")["position"] < 180000, "the camera looks to the right, across north")
        wait_for(lambda: self.drive("tilt")["position"] < -20000, "the camera looks down")
        self.wait_at_rest("pan", "tilt")
        self.assertIn("absolute", self.browser.text(".exchange-body"))


class DragsByFinger(Drags):
    """The same with a finger on a phone."""

    browser_options = {"width": 390, "height": 844, "phone": True}
    kind = "touch"


class Movement(Aimed):
    """Everything else that moves the camera."""

    def test_a_click_centres_what_it_hits(self):
        point = self.place(0.9, 0.8)
        self.browser.pointer(("move", *point))
        pan, tilt = re.findall(
            r"-?[\d.]+", wait_for(lambda: self.browser.text(".pointer-note"), "the place has a bearing")
        )
        self.browser.pointer(("move", *point), ("down",), ("up",))
        wait_for(
            lambda: abs(self.drive("pan")["position"] / 1000 - float(pan)) < 0.1
            and abs(self.drive("tilt")["position"] / 1000 - float(tilt)) < 0.1,
            f"the camera looks at {pan} and {tilt}",
        )
        self.assertNotEqual(350.0, float(pan))
        wait_for(
            lambda: self.browser.text(".pointer-note") not in ("", f"{pan}° / {tilt}°"), "the pointer has a new bearing"
        )
        text = wait_for(lambda: self.browser.text(".exchange-body"), "the command is shown")
        for part in ("positionPan", "positionTilt", "absolute", "snmpset -v2c", "ptzctl"):
            self.assertIn(part, text)

    def test_a_lost_focus_ends_a_drag(self):
        self.browser.pointer(("move", *self.place(0.5, 0.5)), ("down",), ("move", *self.place(0.8, 0.5)))
        wait_for(lambda: self.drive("pan")["velocity"] > 0, "pan moves")
        self.browser.run("window.dispatchEvent(new Event('blur'))")
        self.wait_at_rest("pan")
        self.browser.pointer(("up",))

    def test_the_wheel_zooms(self):
        x, y = self.place(0.5, 0.5)
        self.browser.devtools("Input.dispatchMouseEvent", type="mouseWheel", x=x, y=y, deltaX=0, deltaY=-100)
        wait_for(lambda: abs(self.drive("zoom")["position"] - 25) <= 1, "a notch zooms by a quarter")

    def test_escape_stops_from_a_field(self):
        self.browser.run("document.querySelector('.go input').focus()")
        self.rig.snmp("set", "private", PAN, "x", "03400000")
        wait_for(lambda: self.drive("pan")["moving"], "pan moves")
        self.browser.press("Escape")
        self.wait_at_rest("pan")

    def test_the_stop_button_stops(self):
        self.rig.snmp("set", "private", PAN, "x", "03400000")
        wait_for(lambda: self.drive("pan")["moving"], "pan moves")
        self.browser.click("#stop")
        self.wait_at_rest("pan")


class LostPages(PageTest):
    """Pages that end in the middle of a move."""

    def start_drag(self, browser):
        """Moves the camera by a drag that does not end."""
        browser.pointer(("move", *self.place(0.5, 0.5)), ("down",), ("move", *self.place(0.8, 0.5)))
        wait_for(lambda: self.drive("pan")["velocity"] > 0, "pan moves")

    def test_a_page_that_is_left_stops_its_move(self):
        self.start_drag(self.browser)
        self.browser.open("about:blank")
        self.wait_at_rest("pan")
        self.browser.pointer(("up",))

    def test_a_browser_that_dies_leaves_no_move(self):
        with Browser() as browser:
            browser.open(self.rig.address + self.path)
            wait_for(lambda: browser.run(self.ready), "the page is current")
            self.start_drag(browser)
            browser.kill()
            self.wait_at_rest("pan")

    def test_a_stop_arrives_although_five_windows_are_open(self):
        first = self.browser.command("GET", "/window")
        try:
            for _ in range(4):
                window = self.browser.command("POST", "/window/new", {"type": "window"})["handle"]
                self.browser.command("POST", "/window", {"handle": window})
                self.browser.open(self.rig.address + self.path)
                wait_for(lambda: self.browser.run(self.ready), "the page is current")
            self.rig.snmp("set", "private", PAN, "x", "03400000")
            wait_for(lambda: self.drive("pan")["moving"], "pan moves")
            self.browser.press("Escape")
            self.wait_at_rest("pan")
        finally:
            for window in self.browser.command("GET", "/window/handles"):
                if window != first:
                    self.browser.command("POST", "/window", {"handle": window})
                    self.browser.command("DELETE", "/window")
            self.browser.command("POST", "/window", {"handle": first})


class Keyboard(PageTest):
    """The page without a pointer."""

    FOCUSED = """
        const element = document.activeElement;
        const style = getComputedStyle(element);
        return {id: element.id, name: element.getAttribute('aria-label') ?? element.textContent, tag: element.tagName,
                outline: style.outlineStyle !== 'none' && parseFloat(style.outlineWidth) >= 2};
    """

    def tab_to(self, wanted):
        """Presses Tab until an element has the focus."""
        passed = []
        for _ in range(60):
            self.browser.press("Tab")
            focused = self.browser.run(self.FOCUSED)
            self.assertTrue(focused["outline"] or focused["tag"] == "BODY", f"the focus is invisible on {focused}")
            passed.append(focused["name"])
            if wanted(focused):
                return passed
        raise AssertionError(f"not reached by Tab; passed {passed}")

    def test_arrow_keys_move_while_pressed(self):
        self.tab_to(lambda focused: focused["id"] == "picture")
        self.browser.keys(("down", "Right"))
        wait_for(lambda: self.drive("pan")["velocity"] > 0, "pan moves")
        self.browser.keys(("up", "Right"))
        self.wait_at_rest("pan")

    def test_a_button_moves_while_space_is_pressed(self):
        self.tab_to(lambda focused: focused["name"] == "Zoom in")
        before = self.drive("zoom")["position"]
        self.browser.keys(("down", "Space"))
        wait_for(lambda: self.drive("zoom")["position"] > before, "the zoom moves")
        self.browser.keys(("up", "Space"))
        self.wait_at_rest("zoom")

    def test_a_form_goes_to_a_position(self):
        self.tab_to(lambda focused: focused["name"] == "Zoom in")
        self.tab_to(
            lambda focused: focused["tag"] == "INPUT"
            and self.browser.run("return document.activeElement.closest('.go') !== null")
        )
        self.browser.press("1", "2", "3", "Tab", "-", "1", "0", "Enter")
        wait_for(
            lambda: self.drive("pan")["position"] == 123000 and self.drive("tilt")["position"] == -10000,
            "the camera looks at 123 and -10",
        )

    def test_keys_open_the_list_of_keys_and_the_tabs(self):
        self.browser.press("?")
        wait_for(lambda: "Centre this place" in (self.browser.text("dialog[open]") or ""), "the list is open")
        self.browser.press("Escape")
        self.browser.press("3")
        wait_for(
            lambda: self.browser.run("return document.querySelector('.simulator').checkVisibility()"), "the tab is open"
        )
        self.browser.run("document.querySelector('[aria-selected=true]').focus()")
        self.browser.press("Right")
        wait_for(
            lambda: self.browser.run("return document.querySelector('.log-view').checkVisibility()"), "the log is next"
        )

    def test_every_control_has_a_name(self):
        roles = {
            "button",
            "textbox",
            "searchbox",
            "spinbutton",
            "slider",
            "checkbox",
            "combobox",
            "tab",
            "link",
            "img",
            "application",
            "region",
            "progressbar",
        }
        for key in "123":
            self.browser.press(key)
            nodes = self.browser.devtools("Accessibility.getFullAXTree")["nodes"]
            unnamed = [
                node["role"]["value"]
                for node in nodes
                if not node["ignored"]
                and node.get("role", {}).get("value") in roles
                and not node.get("name", {}).get("value")
            ]
            self.assertEqual([], unnamed)


if __name__ == "__main__":
    unittest.main()
