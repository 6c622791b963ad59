# SPDX-License-Identifier: Apache-2.0
"""Contrast, narrow screens, and the page of several cameras."""

import unittest

from page_case import PAN, PageTest
from webdriver import wait_for


CONTRAST = """
    const rgb = (text) => text.match(/[\\d.]+/g).map(Number);
    const luminance = ([r, g, b]) => [r, g, b].map((part) => part / 255).map(
        (part) => (part <= 0.03928 ? part / 12.92 : ((part + 0.055) / 1.055) ** 2.4)).reduce(
        (sum, part, index) => sum + part * [0.2126, 0.7152, 0.0722][index], 0);
    const ground = (element) => {
        for (let each = element; each; each = each.parentElement) {
            const color = rgb(getComputedStyle(each).backgroundColor);
            if (color.length === 3 || color[3] > 0.6) return color;
        }
        return [255, 255, 255];
    };
    const poor = new Set();
    const walker = document.createTreeWalker(document.body, NodeFilter.SHOW_TEXT);
    while (walker.nextNode()) {
        const element = walker.currentNode.parentElement;
        if (!walker.currentNode.textContent.trim() || !element.checkVisibility() || element.closest('svg, :disabled, .hint')) continue;
        const [light, dark] = [luminance(rgb(getComputedStyle(element).color)), luminance(ground(element))].sort((a, b) => b - a);
        const ratio = (light + 0.05) / (dark + 0.05);
        if (ratio < 4.5) poor.add(`${element.tagName}.${element.className} "${element.textContent.slice(0, 20)}" ${ratio.toFixed(2)}`);
    }
    return [...poor];
"""


class Looks(PageTest):
    """Contrast and sizes."""

    def check_contrast(self):
        """Checks the texts of all tabs against the ratio for normal text."""
        for key in "123":
            self.browser.press(key)
            self.assertEqual([], self.browser.run(CONTRAST))

    def test_texts_have_contrast_in_light(self):
        self.check_contrast()


class LooksInTheDark(Looks):
    """The same in the dark."""

    browser_options = {"dark": True}


class Phone(PageTest):
    """A narrow screen with touch."""

    browser_options = {"width": 360, "height": 780, "phone": True}

    def test_nothing_is_wider_than_the_screen(self):
        for tab in range(3):
            self.browser.run("document.querySelector(`#tab-${arguments[0]}`).click()", tab)
            self.assertLessEqual(self.browser.run("return document.documentElement.scrollWidth"), 360)

    def test_buttons_are_large_enough_for_fingers(self):
        small = self.browser.run(
            "return [...document.querySelectorAll('.controls button, #stop')].filter("
            "(each) => each.checkVisibility()).map((each) => [each.textContent,"
            "each.getBoundingClientRect().height]).filter(([, height]) => height < 44)"
        )
        self.assertEqual([], small)

    def test_stop_is_in_the_window_at_every_place_of_the_page(self):
        self.browser.run("scrollTo(0, document.documentElement.scrollHeight)")
        self.rig.snmp("set", "private", PAN, "x", "03400000")
        wait_for(lambda: self.drive("pan")["moving"], "pan moves")
        self.browser.click("#stop")
        self.wait_at_rest("pan")


class Wall(PageTest):
    """Several cameras."""

    path = ""
    ready = "return document.querySelectorAll('.tile-status.good').length === 2"

    def test_the_start_page_shows_all_cameras(self):
        self.assertEqual(
            ["dome", "minimal"],
            self.browser.run("return [...document.querySelectorAll('.tile strong')].map((name) => name.textContent)"),
        )
        wait_for(
            lambda: self.browser.run(
                "return [...document.querySelectorAll('.tile img')].every("
                "(image) => image.complete && image.naturalWidth > 0)"
            ),
            "all pictures are shown",
        )

    def test_a_camera_without_movement_shows_no_controls_for_it(self):
        self.browser.click(".tiles li:nth-child(2) a")
        wait_for(lambda: "Fixed camera" in (self.browser.text(".reading") or ""), "the page of the camera is shown")
        self.assertFalse(self.browser.run("return document.querySelector('.pad').checkVisibility()"))


if __name__ == "__main__":
    unittest.main()
