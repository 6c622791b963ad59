# SPDX-License-Identifier: Apache-2.0
"""A browser that is driven over the WebDriver protocol, with nothing but the standard library."""

import base64
import contextlib
import json
import os
import pathlib
import shutil
import signal
import socket
import subprocess
import tempfile
import time
import urllib.error
import urllib.request

ELEMENT = "element-6066-11e4-a52e-4f735466cecf"
KEYS = {
    "Tab": "\ue004",
    "Enter": "\ue007",
    "Shift": "\ue008",
    "Control": "\ue009",
    "Escape": "\ue00c",
    "Space": " ",
    "Left": "\ue012",
    "Up": "\ue013",
    "Right": "\ue014",
    "Down": "\ue015",
    "PageUp": "\ue00e",
    "PageDown": "\ue00f",
}


def free_port():
    """Returns a TCP port on the loopback interface that is free now."""
    with socket.socket() as listener:
        listener.bind(("127.0.0.1", 0))
        return listener.getsockname()[1]


def wait_for(condition, what, seconds=60):
    """Repeats a condition until it is true, and returns its value. Raises AssertionError after the deadline."""
    end = time.monotonic() + seconds
    while True:
        value = condition()
        if value:
            return value
        if time.monotonic() > end:
            raise AssertionError(f"{what}: not within {seconds} seconds; last: {value!r}")
        time.sleep(0.05)


class BrowserError(Exception):
    """An error answer of the browser."""


class Browser:
    """Chromium without a window. Its profile is temporary."""

    def __init__(self, width=1440, height=900, dark=False, phone=False, reduced_motion=False):
        port = free_port()
        self.profile = tempfile.mkdtemp(prefix="browser.")
        self.address = f"http://127.0.0.1:{port}"
        # pylint: disable-next=consider-using-with
        self.driver = subprocess.Popen(
            ["chromedriver", f"--port={port}"], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL
        )
        self.session = ""
        self.place = {"x": 0, "y": 0}  # of the pointer
        self.is_down = False
        try:
            wait_for(self._is_ready, "chromedriver is ready")
            self._start(width, height, dark, phone, reduced_motion)
        except BaseException:
            self.close()
            raise

    def _is_ready(self):
        try:
            return self.call("GET", "/status")["ready"]
        except (OSError, BrowserError):
            return False

    def _start(self, width, height, dark, phone, reduced_motion):
        # Without --no-sandbox, Chromium does not run as root, as in containers.
        arguments = [
            "--headless=new",
            "--no-sandbox",
            "--disable-gpu",
            "--disable-dev-shm-usage",
            "--no-first-run",
            "--disable-background-networking",
            "--disable-component-update",
            "--disable-sync",
            "--hide-scrollbars",
            f"--window-size={width},{height}",
            f"--user-data-dir={self.profile}",
        ]
        options = {"args": arguments}
        if phone:
            options["mobileEmulation"] = {
                "deviceMetrics": {"width": width, "height": height, "pixelRatio": 2, "touch": True}
            }
        capabilities = {
            "alwaysMatch": {
                "browserName": "chrome",
                "goog:chromeOptions": options,
                "goog:loggingPrefs": {"browser": "ALL", "performance": "ALL"},
            }
        }
        self.session = self.call("POST", "/session", {"capabilities": capabilities})["sessionId"]
        if not phone:
            self.devtools(
                "Emulation.setDeviceMetricsOverride", width=width, height=height, deviceScaleFactor=1, mobile=False
            )
        features = [{"name": "prefers-color-scheme", "value": "dark" if dark else "light"}]
        if reduced_motion:
            features.append({"name": "prefers-reduced-motion", "value": "reduce"})
        self.devtools("Emulation.setEmulatedMedia", features=features)
        # What the browser's own first page requests is no page's fault.
        self.open("about:blank")
        self.requests()

    def kill(self):
        """Kills all processes of the browser at once, as when a machine loses its power."""
        children = {}
        for entry in pathlib.Path("/proc").glob("[0-9]*/stat"):
            try:
                parent = int(entry.read_text().rpartition(")")[2].split()[1])
            except OSError:
                continue  # ended meanwhile
            children.setdefault(parent, []).append(int(entry.parent.name))
        found = [self.driver.pid]
        for process in found:
            found += children.get(process, [])
        for process in found[1:]:
            with contextlib.suppress(ProcessLookupError):
                os.kill(process, signal.SIGKILL)
        self.session = ""  # its end would wait for the browser

    def close(self):
        """Ends the browser and its driver."""
        try:
            if self.session:
                self.command("DELETE", "")
        except (OSError, BrowserError):
            pass
        self.driver.terminate()
        self.driver.wait()
        shutil.rmtree(self.profile, ignore_errors=True)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.close()

    def call(self, method, path, body=None):
        """Calls the driver."""
        data = None if method != "POST" else json.dumps(body or {}).encode()
        request = urllib.request.Request(self.address + path, data, {"Content-Type": "application/json"}, method=method)
        opener = urllib.request.build_opener(urllib.request.ProxyHandler({}))
        try:
            with opener.open(request, timeout=60) as response:
                return json.load(response)["value"]
        except urllib.error.HTTPError as error:
            raise BrowserError(json.load(error)["value"]["message"]) from None

    def command(self, method, path, body=None):
        """Calls the driver's session."""
        return self.call(method, f"/session/{self.session}{path}", body)

    def devtools(self, command, **parameters):
        """Sends a command of the browser's own protocol."""
        return self.command("POST", "/goog/cdp/execute", {"cmd": command, "params": parameters})

    def open(self, address):
        """Opens a page."""
        self.command("POST", "/url", {"url": address})

    def run(self, script, *arguments):
        """Runs JavaScript and returns its value; awaits a promise."""
        return self.command("POST", "/execute/sync", {"script": script, "args": list(arguments)})

    def text(self, selector):
        """Returns the text of the first element, or None."""
        return self.run("return document.querySelector(arguments[0])?.innerText ?? null", selector)

    def element(self, selector):
        """Returns a reference to the first element."""
        return self.command("POST", "/element", {"using": "css selector", "value": selector})[ELEMENT]

    def click(self, selector):
        """Clicks the middle of an element."""
        self.command("POST", f"/element/{self.element(selector)}/click")

    def pointer(self, *steps, kind="mouse"):
        """
        Carries out steps of a mouse, or of a finger ("touch"): ("move", x, y), ("down",), ("up",). What is down stays
        down until a later call.
        """
        for step, *place in steps:
            if step == "move":
                self.place = {"x": round(place[0]), "y": round(place[1])}
            else:
                self.is_down = step == "down"
            if kind == "mouse":
                names = {"move": "mouseMoved", "down": "mousePressed", "up": "mouseReleased"}
                self.devtools(
                    "Input.dispatchMouseEvent",
                    type=names[step],
                    button="none" if step == "move" and not self.is_down else "left",
                    buttons=int(self.is_down),
                    clickCount=1,
                    **self.place,
                )
            elif step != "move" or self.is_down:  # a finger above the screen has no place
                names = {"move": "touchMove", "down": "touchStart", "up": "touchEnd"}
                points = [self.place] if self.is_down else []
                self.devtools("Input.dispatchTouchEvent", type=names[step], touchPoints=points)

    def press(self, *keys):
        """Presses and releases keys, one after the other."""
        self.keys(*[step for key in keys for step in (("down", key), ("up", key))])

    def keys(self, *steps):
        """Carries out steps of the keyboard: ("down", key), ("up", key), ("pause", ms)."""
        actions = []
        for kind, value in steps:
            if kind == "pause":
                actions.append({"type": "pause", "duration": value})
            else:
                actions.append({"type": "keyDown" if kind == "down" else "keyUp", "value": KEYS.get(value, value)})
        self.command("POST", "/actions", {"actions": [{"type": "key", "id": "keyboard", "actions": actions}]})

    def box(self, selector):
        """Returns the place of an element in the window."""
        return self.run(
            "const box = document.querySelector(arguments[0]).getBoundingClientRect();"
            "return {x: box.x, y: box.y, width: box.width, height: box.height}",
            selector,
        )

    def console_errors(self):
        """Returns the errors and warnings since the last call."""
        entries = self.command("POST", "/se/log", {"type": "browser"})
        return [entry["message"] for entry in entries if entry["level"] in ("SEVERE", "WARNING")]

    def requests(self):
        """Returns the addresses that the page has requested since the last call."""
        entries = self.command("POST", "/se/log", {"type": "performance"})
        messages = [json.loads(entry["message"])["message"] for entry in entries]
        return [
            message["params"]["request"]["url"]
            for message in messages
            if message["method"] == "Network.requestWillBeSent"
        ]

    def screenshot(self, path, full=False):
        """Writes a picture of the window, or of the whole page."""
        if full:
            height = self.run("return document.documentElement.scrollHeight")
            width = self.run("return innerWidth")
            self.devtools(
                "Emulation.setDeviceMetricsOverride", width=width, height=height, deviceScaleFactor=1, mobile=False
            )
        data = self.command("GET", "/screenshot")
        with open(path, "wb") as file:
            file.write(base64.b64decode(data))
