# SPDX-License-Identifier: Apache-2.0
"""A simulated camera, an agent with the module, and the panel, each in a process of its own on the loopback interface."""

import json
import os
import pathlib
import shutil
import signal
import socket
import subprocess
import tempfile
import urllib.error
import urllib.request

from webdriver import free_port, wait_for

MODEL_NAME = ".1.3.6.1.4.1.99999.1.1.2.0.0"
AGENT = """agentAddress udp:127.0.0.1:{port}
[snmp] clientaddr 127.0.0.1
dontLogTCPWrappersConnects yes
view all included .1.3.6.1.2.1.1
view all included .1.3.6.1.4.1.1206
view all included .1.3.6.1.4.1.99999
rocommunity public 127.0.0.1 -V all
rwcommunity private 127.0.0.1 -V all
trap2sink 127.0.0.1:{traps} public
dlmod quarnsnmp {directory}/module.so
"""


def free_udp_port():
    """Returns a UDP port on the loopback interface that is free now."""
    with socket.socket(type=socket.SOCK_DGRAM) as endpoint:
        endpoint.bind(("127.0.0.1", 0))
        return endpoint.getsockname()[1]


class Rig:
    """
    All programs of a panel. `build` is the directory of a build, `watch` adds the module that reports requests, and
    `configuration` has further lines for the agents.
    """

    def __init__(self, build, cameras=("dome",), watch=False, configuration=""):
        self.build = pathlib.Path(build).resolve()
        self.configuration = configuration
        self.directory = pathlib.Path(tempfile.mkdtemp(prefix="panel."))
        self.watch = watch
        self.processes = []
        self.cameras = []
        try:
            self._start(cameras)
        except BaseException:
            self.close()
            raise

    def _start(self, cameras):
        self.traps = free_udp_port()
        for number, camera in enumerate(cameras):
            self._add_camera(number, camera)
        self.port = free_port()
        self.panel = self.start_panel()

    def _run(self, log, *command, **environment):
        with open(self.directory / log, "ab") as output:
            # pylint: disable-next=consider-using-with
            process = subprocess.Popen(
                [str(word) for word in command],
                stdout=output,
                stderr=output,
                env={**os.environ, **{name: str(value) for name, value in environment.items()}},
            )
        self.processes.append(process)
        return process

    def _add_camera(self, number, model):
        directory = self.directory / f"{number}"
        (directory / "mibs").mkdir(parents=True)
        pair = {"number": number, "model": model, "directory": directory / "camera", "port": free_udp_port()}
        configuration = AGENT.format(port=pair["port"], traps=self.traps, directory=directory) + self.configuration
        (directory / "module.so").symlink_to(self.build / "lib/libquarnsnmp_Morvek.so")
        if self.watch:
            (directory / "watch.so").symlink_to(self.build / "lib/libquarnsnmp_watch.so")
            configuration += f"dlmod quarnsnmp_watch {directory}/watch.so\n"
        (directory / "snmpd.conf").write_text(configuration)
        self.cameras.append(pair)
        self.start_camera(number)
        self.start_agent(number)

    def start_camera(self, number=0):
        """Starts a camera, also again after its end, and waits until it is ready."""
        pair = self.cameras[number]
        pair["camera"] = self._run(
            f"camera{number}.log",
            self.build / "bin/quarnsnmp-camera",
            "--camera",
            pair["model"],
            "--directory",
            pair["directory"],
        )
        wait_for(lambda: (pair["directory"] / "control.sock").exists(), f"camera {number} is ready")

    def start_agent(self, number=0, **environment):
        """Starts a camera's agent, also again after its end, and waits until it answers."""
        pair = self.cameras[number]
        directory = self.directory / f"{number}"
        pair["agent"] = self._run(
            f"agent{number}.log",
            shutil.which("snmpd", path=os.environ["PATH"] + ":/usr/sbin"),
            "-f",
            "-r",
            "-C",
            "-c",
            directory / "snmpd.conf",
            "-I",
            "-smux",
            "-Le",
            LD_LIBRARY_PATH=self.build / "lib",
            MIBS="",
            MIBDIRS=directory / "mibs",
            SNMPCONFPATH=directory / "mibs",
            SNMP_PERSISTENT_DIR=directory / "persistent",
            QUARNSNMP_CAMERA_DIR=pair["directory"],
            QUARNSNMP_LOG_FILE=directory / "module.log",
            **environment,
        )
        wait_for(lambda: self.snmp("get", "public", MODEL_NAME, port=pair["port"]), f"agent {number} answers")

    def reload_agent(self, number=0):
        """Makes an agent read its configuration again."""
        self.cameras[number]["agent"].send_signal(signal.SIGHUP)

    def end(self, program, number=0):
        """Ends the "camera" or the "agent" of a pair."""
        process = self.cameras[number][program]
        process.terminate()
        process.wait(30)

    def start_panel(self):
        """Starts the panel's server, and waits until it answers."""
        pairs = [
            word
            for pair in self.cameras
            for word in ("--camera", pair["directory"], "--agent", f"127.0.0.1:{pair['port']}")
        ]
        panel = self._run(
            "panel.log",
            self.build / "bin/quarnsnmp-panel",
            "--listen",
            f"127.0.0.1:{self.port}",
            "--trap-listen",
            f"127.0.0.1:{self.traps}",
            *pairs,
        )

        def answers():
            assert panel.poll() is None, f"the panel has exited: {(self.directory / 'panel.log').read_text()}"
            try:
                return self.get("/api/cameras")
            except OSError:
                return None

        wait_for(answers, "the panel answers")
        return panel

    @property
    def address(self):
        """Address of the page."""
        return f"http://127.0.0.1:{self.port}/"

    def get(self, path):
        """Gets JSON from the panel's server."""
        opener = urllib.request.build_opener(urllib.request.ProxyHandler({}))
        with opener.open(self.address.rstrip("/") + path, timeout=10) as response:
            return json.load(response)

    def control(self, *arguments, camera=0):
        """Runs quarnsnmp-camctl and returns its output."""
        return subprocess.run(
            [self.build / "bin/quarnsnmp-camctl", "--directory", self.cameras[camera]["directory"], *arguments],
            check=True,
            capture_output=True,
            text=True,
            timeout=30,
        ).stdout

    def services(self, camera=0):
        """Returns the camera's services by name, as it tells them."""
        return json.loads(self.control("state", camera=camera))["services"]

    def state(self, service, target=0, camera=0):
        """Returns the fields of a service's target, as the camera tells them."""
        return list(self.services(camera)[service]["targets"].values())[target]

    def snmp(self, verb, community, *arguments, port=None, seconds=1):
        """Runs snmpget or snmpset. Returns its output, or None without an answer or without the object."""
        result = subprocess.run(
            [
                "snmp" + verb,
                "-v2c",
                "-c",
                community,
                "-m",
                "",
                "-Oqv",
                "-r",
                "0",
                "-t",
                str(seconds),
                f"127.0.0.1:{port or self.cameras[0]['port']}",
                *arguments,
            ],
            check=False,
            capture_output=True,
            text=True,
            timeout=30,
        )
        return result.stdout if result.returncode == 0 and "No Such" not in result.stdout else None

    def close(self):
        """Ends all programs."""
        for process in reversed(self.processes):
            if process.poll() is None:
                process.send_signal(signal.SIGCONT)
                process.terminate()
        for process in self.processes:
            try:
                process.wait(10)
            except subprocess.TimeoutExpired:
                process.kill()
                process.wait()
        shutil.rmtree(self.directory, ignore_errors=True)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.close()
