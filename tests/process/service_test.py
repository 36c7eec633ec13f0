"""vgwd as a service: what it tells its manager, and what signals do."""
import os
import re
import signal
import socket
import subprocess
import time
import unittest.mock
from pathlib import Path

import serve_case
from support import attrlog
from support.agent import SLOWNESS, program

UNIT = Path(__file__).resolve().parents[2] / "packaging" / "vgwd.service"


class Manager:
    """The socket that a service manager gives."""

    def __init__(self, address):
        self.socket = socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM)
        self.socket.bind(address)
        self.told = []

    def await_told(self, line, timeout=20):
        """Until that line was told; a sequence of them in its order."""
        deadline = time.monotonic() + timeout * SLOWNESS
        while line not in self.told:
            self.socket.settimeout(max(0.01, deadline - time.monotonic()))
            try:
                self.told += self.socket.recv(4096).decode().splitlines()
            except TimeoutError:
                raise AssertionError(f"{line} was not told: {self.told}") from None
        self.told = self.told[self.told.index(line) + 1 :]


class ServiceTest(serve_case.ServeCase):
    def setUp(self):
        super().setUp()
        self.db = self.server()

    def managed(self, address, *options, **variables):
        manager = Manager("\0" + address[1:] if address.startswith("@") else address)
        self.addCleanup(manager.socket.close)
        with unittest.mock.patch.dict(os.environ, NOTIFY_SOCKET=address, **variables):
            return manager, self.agent(self.db, *options)

    def test_it_is_ready_when_it_is_served_and_says_when_it_stops(self):
        manager, agent = self.managed(str(self.directory / "notify"))
        manager.await_told("READY=1")
        self.client(agent, "/vgw/status").await_told("synced")
        self.assertEqual(agent.stop(), 0)
        manager.await_told("STOPPING=1")

    def test_an_abstract_address_is_told_too(self):
        manager, _ = self.managed(f"@vgw-notify-{os.getpid()}")
        manager.await_told("READY=1")

    def test_a_watchdog_is_fed_twice_within_its_time(self):
        manager, agent = self.managed(str(self.directory / "notify"), WATCHDOG_USEC="1000000")
        manager.await_told("READY=1")
        begin = time.monotonic()
        for _ in range(4):
            manager.await_told("WATCHDOG=1")
        self.assertLess(time.monotonic() - begin, 2.5 * SLOWNESS)
        # A loop that stands still feeds nobody.
        agent._process.send_signal(signal.SIGSTOP)
        self.addCleanup(agent._process.send_signal, signal.SIGCONT)
        manager.told.clear()
        with self.assertRaises(AssertionError):
            for _ in range(2):
                manager.await_told("WATCHDOG=1", timeout=1.5 / SLOWNESS)

    def test_a_watchdog_of_another_process_is_not_fed(self):
        manager, _ = self.managed(str(self.directory / "notify"), WATCHDOG_USEC="200000", WATCHDOG_PID="1")
        manager.await_told("READY=1")
        with self.assertRaises(AssertionError):
            manager.await_told("WATCHDOG=1", timeout=1 / SLOWNESS)

    def test_sighup_opens_a_log_anew_that_was_moved_away(self):
        log = self.directory / "log"
        agent = self.agent(self.db, "--log-file", str(log))
        agent.await_that(lambda: log.exists() and "listening" in log.read_text(), "the log is written")
        log.rename(self.directory / "log.1")
        agent._process.send_signal(signal.SIGHUP)
        agent.await_that(lambda: log.exists() and "opened anew" in log.read_text(), "another log is written")
        self.assertNotIn("opened anew", (self.directory / "log.1").read_text())
        self.client(agent, "/vgw/status").await_told("synced")

    def test_the_unit_names_options_that_there_are_and_what_it_promises(self):
        unit = UNIT.read_text()
        help_text = subprocess.run([program(), "--help"], capture_output=True, text=True, check=True).stdout
        (start,) = re.findall(r"^ExecStart=/usr/bin/vgwd (.*)$", unit, re.MULTILINE)
        for option in re.findall(r"(--[a-z-]+)", start):
            self.assertIn(option, help_text)
        for line in ("Type=notify", "ExecReload=/bin/kill -HUP $MAINPID", "NoNewPrivileges=yes", "ProtectSystem=strict"):
            self.assertIn(line, unit)
        self.assertRegex(unit, r"WatchdogSec=\d+")

    def test_the_units_options_start_an_agent(self):
        (start,) = re.findall(r"^ExecStart=/usr/bin/vgwd (.*)$", UNIT.read_text(), re.MULTILINE)
        words = start.replace("/run/vgwd", str(self.directory / "unit")).split()
        process = subprocess.Popen([program(), *words, "--ovsdb", self.db.remote], stdin=subprocess.DEVNULL)
        self.addCleanup(process.wait)
        self.addCleanup(process.terminate)
        place = self.directory / "unit" / "vgwd.sock"
        deadline = time.monotonic() + 10 * SLOWNESS
        while (peer := self.peer_at(place)) is None:
            self.assertLess(time.monotonic(), deadline)
            time.sleep(0.01)
        self.addCleanup(peer.close)
        peer.mounted(1, "/vgw/status")

    def peer_at(self, place):
        """None while nobody listens there, though the socket may be there already."""
        try:
            return attrlog.Peer(place)
        except (FileNotFoundError, ConnectionRefusedError):
            return None


if __name__ == "__main__":
    serve_case.main()
