# SPDX-License-Identifier: Apache-2.0
"""Takes the pictures of the panel in docs/panel/. Usage: screenshots.py BUILD DIRECTORY"""

import base64
import pathlib
import subprocess
import sys
import time

from rig import Rig
from webdriver import Browser, wait_for

READY = "return document.body.dataset.link === 'up' && !document.body.classList.contains('old')"
SETTLE = 2  # seconds in which the picture and the log arrive
QUALITY = 80  # of a JPEG file; the text stays sharp
POSITIONS = [f".1.3.6.1.4.1.1206.4.2.7.4.{axis}.0" for axis in (1, 2, 3)]


def wait_for_rest(rig):
    """Waits until the camera does not move."""
    wait_for(lambda: not any(rig.state("positioning")[axis]["moving"] for axis in ("pan", "tilt", "zoom")), "rest")


def prepare(rig):
    """Stores presets over SNMP, as an operator would, and points the camera at something."""
    ptzctl = [rig.build / "bin/ptzctl", "-H", f"127.0.0.1:{rig.cameras[0]['port']}", "-c", "private"]

    def run(*words):
        subprocess.run([*ptzctl, *words], check=True, capture_output=True, timeout=30)
        wait_for_rest(rig)

    for number, pan, tilt in ((1, "10", "-9"), (2, "120", "-10"), (3, "180", "-8"), (4, "335", "-10")):
        run("pan", "to", pan, "--speed", "127")
        run("tilt", "to", tilt, "--speed", "127")
        run("preset", "store", str(number))
    run("preset", "go", "1")
    run("relay", "1", "on")
    rig.control("set", "alarm/1", "state", "1")
    rig.control("set", "temperature/1", "temperature", "34200")


def open_page(rig, browser, path="?camera=0"):
    """Opens the page, and waits until it is current."""
    browser.open(rig.address + path)
    wait_for(lambda: browser.run(READY), "the page is current")
    time.sleep(SETTLE)


def write(browser, path, selector=None):
    """Writes a picture of the window, or of an element with its surroundings."""
    options = {}
    if selector:
        box = browser.box(selector)
        margin = 12
        x, y = box["x"] - margin, box["y"] + browser.run("return scrollY") - margin
        options["clip"] = {
            "x": x,
            "y": y,
            "width": box["width"] + 2 * margin,
            "height": box["height"] + 2 * margin,
            "scale": 1,
        }
        options["captureBeyondViewport"] = True
    picture = browser.devtools("Page.captureScreenshot", format="jpeg", quality=QUALITY, **options)
    path.write_bytes(base64.b64decode(picture["data"]))


def show_commands(rig, browser, x, y):
    """Clicks into the picture, and shows commands only in the log."""
    box = browser.box("#picture")
    browser.pointer(("move", box["x"] + x * box["width"], box["y"] + y * box["height"]), ("down",), ("up",))
    wait_for(lambda: "Accepted" in browser.text(".outcome"), "the command is accepted")
    wait_for_rest(rig)
    browser.run("document.querySelectorAll('.kinds input')[3].click()")
    browser.pointer(("move", 720, 1000))
    time.sleep(SETTLE)


def main(build, directory):
    """Takes all pictures."""
    directory.mkdir(parents=True, exist_ok=True)
    with Rig(build, cameras=("dome",), watch=True) as rig:
        prepare(rig)
        with Browser(width=1440, height=1010) as browser:
            open_page(rig, browser)
            show_commands(rig, browser, 0.53, 0.48)
            write(browser, directory / "light.jpg")
            browser.press("3")
            time.sleep(SETTLE)
            write(browser, directory / "camera-side.jpg", ".details-card")
            rig.snmp("get", "public", *POSITIONS, seconds=10)
            browser.press("2")
            browser.run(
                "document.querySelector('.objects-view input').value = 'position';"
                "document.querySelector('.objects-view input').dispatchEvent(new Event('input'))"
            )
            time.sleep(SETTLE)
            write(browser, directory / "objects.jpg", ".details-card")
        with Browser(width=1440, height=1010, dark=True) as browser:
            open_page(rig, browser)
            show_commands(rig, browser, 0.47, 0.52)
            write(browser, directory / "dark.jpg")
        with Browser(width=390, height=844, phone=True) as browser:
            open_page(rig, browser)
            write(browser, directory / "phone.jpg")


if __name__ == "__main__":
    main(pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2]))
