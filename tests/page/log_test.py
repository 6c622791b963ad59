# SPDX-License-Identifier: Apache-2.0
"""The log: requests of others, traps and events, and what a person does with them."""

import json
import os
import pathlib
import re
import tempfile
import time
import unittest

from page_case import PAN, PageTest
from webdriver import wait_for


class Log(PageTest):
    """Entries, and the tools above them."""

    ROWS = ".log .record"

    def setUp(self):
        super().setUp()
        self.browser.run("document.querySelector('#log-filter').focus()")

    def filter(self, words):
        """Puts words into the filter, instead of those that are there."""
        self.browser.run("document.querySelector('#log-filter').select()")
        self.browser.press(*words)

    def wait_for_rows(self, what, matches):
        """Waits until all rows match, and there is one at least."""

        def match():
            rows = self.texts(self.ROWS)
            return bool(rows) and all(matches(row) for row in rows)

        wait_for(match, what)

    def move(self, octets):
        """Moves pan as another manager."""
        self.assertIsNotNone(self.rig.snmp("set", "private", PAN, "x", octets, seconds=20))

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
        self.move("02407869")
        answered = time.time()
        seen = wait_for(lambda: self.browser.run("return window.seen ?? null"), "the command is in the log")
        self.assertLess(seen["time"] / 1000 - answered, 1.0)
        for part in ("SET", "positionPan", "270.00°", "private", "noError"):
            self.assertIn(part, seen["text"])

    def test_an_entry_shows_its_octets_and_its_record(self):
        self.move("02401027")
        self.filter("02 40 10 27")
        self.wait_for_rows("the command is shown", lambda row: "100.00°" in row)
        self.browser.run("document.querySelector('.log .opener').focus()")
        self.browser.press("Enter")
        details = wait_for(lambda: self.browser.text(".log .details:not([hidden])"), "the details are open")
        for part in ("absolute", "64 of 127", "low octet first", '"operation":"SET"'):
            self.assertIn(part, details)
        self.browser.press("Enter")
        wait_for(lambda: not self.texts(".log .details:not([hidden])"), "the details are closed")

    def test_the_filter_hides_other_entries(self):
        for number in ("2", "3"):
            self.rig.control("set", f"alarm/{number}", "state", "1")
        self.addCleanup(self.rig.control, "set", "alarm/2", "state", "0")
        self.addCleanup(self.rig.control, "set", "alarm/3", "state", "0")
        for words, matches in (
            ("ALARM/2", lambda row: "alarm/2" in row),
            ("alarm/ -alarm/2", lambda row: "alarm/" in row and "alarm/2" not in row),
        ):
            self.filter(words)
            self.wait_for_rows(f"only entries with {words}", matches)
        self.filter("no such words")
        wait_for(lambda: "No entry matches" in self.browser.text(".log-view .note"), "the page says so")

    def test_each_kind_can_be_hidden(self):
        self.move("02400000")
        self.rig.control("set", "alarm/1", "state", "1")
        self.addCleanup(self.rig.control, "set", "alarm/1", "state", "0")
        for title, kind in (("Writes", "write"), ("Camera", "event")):
            with self.subTest(kind=title):
                wait_for(lambda kind=kind: self.texts(f".log .{kind}"), "an entry is shown")
                toggle = (
                    "[...document.querySelectorAll('.kinds label')].find("
                    "(each) => each.textContent === arguments[0]).click()"
                )
                self.browser.run(toggle, title)
                wait_for(lambda kind=kind: not self.texts(f".log .{kind}"), "all entries are hidden")
                self.browser.run(toggle, title)

    def test_a_paused_log_shows_nothing_new(self):
        self.click("Pause", ".log-view")
        before = self.texts(self.ROWS)
        self.rig.control("set", "alarm/4", "state", "1")
        self.addCleanup(self.rig.control, "set", "alarm/4", "state", "0")
        wait_for(
            lambda: "new while paused" in self.browser.text(".count")
            and not self.browser.text(".count").startswith("0"),
            "an event waits",
        )
        self.assertEqual(before, self.texts(self.ROWS))
        self.click("Pause", ".log-view")
        wait_for(lambda: any("alarm/4" in row for row in self.texts(self.ROWS)), "the event appears")

    def test_copy_and_download_give_the_filtered_entries_as_json_lines(self):
        self.move("0240A00F")
        self.move("0240F02D")
        self.filter("SET positionPan")
        wait_for(lambda: any("02 40 F0 2D" in row for row in self.texts(self.ROWS)), "the commands are shown")
        self.click("Pause", ".log-view")
        for name, take in (("Copy", self.copied), ("Download", self.downloaded)):
            with self.subTest(tool=name):
                records = [json.loads(line) for line in take(name).splitlines()]
                self.assertEqual(len(self.texts(self.ROWS)), len(records))
                self.assertEqual({("SET", "positionPan")}, {(each["operation"], each["name"]) for each in records})
                self.assertEqual(["02 40 A0 0F", "02 40 F0 2D"], [each["value"] for each in records[-2:]])

    def copied(self, name):
        """Clicks a button, and returns what it has put on the clipboard."""
        self.browser.devtools("Browser.grantPermissions", permissions=["clipboardReadWrite"])
        self.click(name, ".log-view .tools")
        wait_for(lambda: "Copied" in self.texts(".log-view .tools button"), "the button says so")
        return self.browser.run("return navigator.clipboard.readText()")

    def downloaded(self, name):
        """Clicks a button, and returns the content of the file that it has made."""
        with tempfile.TemporaryDirectory(prefix="download.") as directory:
            self.browser.devtools("Browser.setDownloadBehavior", behavior="allow", downloadPath=directory)
            self.click(name, ".log-view .tools")
            # The browser gives a file its name when it is complete.
            files = wait_for(lambda: list(pathlib.Path(directory).glob("quarnsnmp-log-*.jsonl")), "the file is there")
            return files[0].read_text()


class Objects(PageTest):
    """The table of objects."""

    def cell(self, column, name="positionPan"):
        """Returns the text of an object's cell."""
        return self.browser.run(
            "const row = [...document.querySelectorAll('.objects tbody tr')].find("
            "(each) => each.querySelector('button').textContent === arguments[1]);"
            "return row?.querySelector(`[data-column=${arguments[0]}]`).textContent ?? ''",
            column,
            name,
        )

    def test_the_last_reader_and_the_last_writer_are_named(self):
        wait_for(lambda: self.rig.snmp("get", "public", PAN), "a manager reads")
        wait_for(lambda: re.fullmatch(r"[\d:]{8} by 127\.0\.0\.1:\d+ \(public\)", self.cell("Read")), "it is named")
        self.assertIsNotNone(self.rig.snmp("set", "private", PAN, "x", "0240B80B", seconds=20))
        wait_for(lambda: "(private)" in self.cell("Written"), "the writer is named")
        self.assertIn("(public)", self.cell("Read"))

    def test_the_form_reads_and_writes_an_object(self):
        self.browser.press("2")
        self.browser.run(
            "[...document.querySelectorAll('.objects .opener')].find("
            "(each) => each.textContent === 'positionPan').click()"
        )
        self.browser.press(*"0240A00F", "Enter")
        wait_for(lambda: "40.00°" in (self.browser.text(".exchange-body") or ""), "the command is shown")
        self.click("Read", ".set-object")
        wait_for(lambda: "snmpget" in self.browser.text(".exchange-body"), "the reading is shown")
        self.assertIn("02 40 A0 0F", self.browser.text(".exchange-body"))


class Traps(PageTest):
    """Notifications of the agent."""

    def wait_for_trap(self, what, *parts):
        """Waits until the log shows a trap with these parts."""
        wait_for(lambda: any(all(part in row for part in parts) for row in self.texts(".log .trap")), what)

    def test_traps_of_the_camera_appear_decoded(self):
        # The module polls the sensors once a minute, so this agent's minutes pass in a second.
        self.assertNotEqual("", os.environ.get("QUARNSNMP_FAKETIME", ""), "the package faketime is needed")
        self.rig.end("agent")
        self.addCleanup(self.rig.start_agent)
        self.addCleanup(self.rig.end, "agent")
        self.rig.start_agent(LD_PRELOAD=os.environ["QUARNSNMP_FAKETIME"], FAKETIME="+0 x60")

        # The first poll only notes the temperature, so it changes until a trap tells of it.
        def temperature_changes():
            for temperature in ("20000", "45000"):
                self.rig.control("set", "temperature/1", "temperature", temperature)
            return [row for row in self.texts(".log .trap") if "temperature" in row]

        self.addCleanup(self.rig.control, "set", "temperature/1", "temperature", "31500")
        row = wait_for(temperature_changes, "a trap of the temperature is in the log")[0]
        self.assertRegex(row, r"trap\s+temperature\w*\s.*(20|45)")

    def test_a_reload_of_the_agent_is_shown(self):
        self.rig.reload_agent()
        self.wait_for_trap("the notification is in the log", "nsNotifyRestart")
        wait_for(
            lambda: self.rig.snmp("set", "private", PAN, "x", "0240D007") is not None, "the agent answers again"
        )
        wait_for(
            lambda: any("02 40 D0 07" in row for row in self.texts(".log .write")), "the log shows requests again"
        )
        wait_for(lambda: self.condition("Agent") == "up", "the agent is up")
        wait_for(lambda: not self.texts(".objects tr.stale"), "all objects are current")


if __name__ == "__main__":
    unittest.main()
