"""A process that is killed at any write of a mount, at each link of the chain: database, vgwd, relay, reader. The others go
on, whoever is started again in its place converges, and nothing has to be cleaned by hand.

VGW_KILLS=n kills n times at each link and end (5 unless told), spread over all that a mount writes.
"""
import os
import random
import signal
import struct
import time

import chain_case
from support import ctl
from support.agent import Agent
from support.proxy import Proxy

KILLS = int(os.environ.get("VGW_KILLS", "5"))
SMALL = {"remote_macs": 10, "local_macs": 5, "logical_switches": 5, "ports": 4, "locators": 6}


def ends_of_frames(stream):
    """Where each frame of the attribute log ends."""
    ends, at = [], 0
    while at + 4 <= len(stream):
        at += 4 + struct.unpack_from(">I", stream, at)[0]
        ends.append(at)
    return [end for end in ends if end <= len(stream)]


class MountKillsTest(chain_case.ChainCase):
    """A proxy stands at each link: it lets so many bytes of the mount through, and then the process is killed."""

    def setUp(self):
        super().setUp()
        self.random = random.Random(self.seed)
        self.db = self.server()
        self.network(self.db, **SMALL)
        self.to_database = self.proxy("database", self.db.socket)
        self.served = Agent(self.directory / "agent", self.to_database.remote)
        self.addCleanup(self.served.stop)
        self.served.start()
        self.to_agent = self.proxy("agent", self.socket(self.served))
        self.relay_socket = self.directory / "relay.sock"
        self.relaying = self.start_relay()
        self.to_relay = self.proxy("relay", self.relay_socket)
        self.reader = self.start_reader()
        # It goes on, whoever is killed, and stays connected unless that is the agent.
        self.bystander = self.client(self.served, "/vgw", reconnect=True)
        self.texts = 0
        self.await_equal()

    def proxy(self, name, target):
        proxy = Proxy(self.directory / f"to-{name}.sock", target)
        self.addCleanup(proxy.close)
        return proxy

    def start_relay(self):
        relay = self.enterContext(ctl.Running(self.to_agent.remote, "relay", self.relay_socket))
        self.served.await_that(lambda: relay.is_running() and self.accepts(self.relay_socket), f"the relay listens: {relay.told()}")
        return relay

    def accepts(self, socket):
        return ctl.run(f"unix:{socket}", "get", "/vgw").returncode == 0

    def start_reader(self):
        return self.reader_at(self.to_relay.path, "/vgw", reconnect=True)

    def await_equal(self):
        """All copies, behind a change."""
        tables = self.change()
        self.served.await_equal(tables)
        self.await_rows(self.bystander, tables)
        self.await_rows(self.reader, tables)

    def change(self):
        self.texts += 1
        return self.describe_a_switch(self.db, f"text {self.texts}")

    def whole_mount(self, proxy):
        """All that is sent when what is behind the proxy is mounted anew."""
        before = proxy.connections
        proxy.cut()
        self.served.await_that(lambda: proxy.connections > before, "it connects again")
        self.await_equal()
        return proxy.heard

    def places(self, whole, ends):
        """Where to kill: at ends of writes and inside of them, the first and the last among them."""
        every = ends + [self.random.randrange(1, len(whole)) for _ in ends]
        some = self.random.sample(every, min(KILLS, len(every)))
        return sorted({1, ends[0], ends[-1], *some})

    def kill_at(self, proxy, place, kill):
        """The mount begins anew, and the process is killed once so much of it has been let through."""
        cuts = proxy.cuts
        delay = self.random.choice([0, 0.003])

        def at_limit():
            proxy.limit = None
            time.sleep(delay)
            kill()

        proxy.at_limit, proxy.limit = at_limit, place
        proxy.cut()
        self.served.await_that(lambda: self.is_reached(proxy, cuts), f"{place} bytes are sent")

    def is_reached(self, proxy, cuts):
        """A mount may be a little shorter than the first: then what changes goes on it."""
        deadline = time.monotonic() + 1
        while proxy.cuts == cuts and time.monotonic() < deadline:
            time.sleep(0.005)
        if proxy.cuts == cuts and proxy.limit is not None:
            self.change()
        return proxy.cuts > cuts

    def kill_at_each_place(self, proxy, kill, start, ends_of=ends_of_frames):
        whole = self.whole_mount(proxy)
        places = self.places(whole, ends_of(whole))
        for place in places:
            try:
                self.kill_at(proxy, place, kill)
                start()
                self.await_equal()
            except AssertionError as error:
                raise AssertionError(f"killed at byte {place} of {len(whole)}: {error}") from error
        print(f"{len(places)} kills in a mount of {len(whole)} bytes")

    def closings(self):
        return sum("closed" in line for line in self.bystander.told)

    def tearDown(self):
        """Nothing is left where they ran, once they are ended."""
        if self.served.is_running():
            self.relaying.send(signal.SIGTERM)
            self.assertEqual(self.relaying.code(), -signal.SIGTERM)
            self.assertFalse(self.relay_socket.exists())
            self.assertEqual(self.served.stop(), 0)
            left = {path.name for path in self.served.directory.iterdir()} - {"said", "heard", "dump.json", "vgwd.lock"}
            self.assertEqual(left, set())
        super().tearDown()

    # --- between the database and vgwd; the text has no frames: any byte

    def test_a_server_killed_at_any_byte_of_its_first_answer_is_mirrored_when_it_is_back(self):
        self.kill_at_each_place(self.to_database, self.db.kill, self.db.start, lambda whole: [*range(100, len(whole), 100)])
        self.assertEqual(self.closings(), 0)

    def test_a_vgwd_killed_at_any_byte_of_the_first_answer_converges_when_it_is_back(self):
        every = lambda whole: [*range(100, len(whole), 100)]
        self.kill_at_each_place(self.to_database, self.served.kill, self.served.start, every)

    # --- between vgwd and a relay

    def test_a_vgwd_killed_at_any_write_of_a_relays_mount_is_mounted_when_it_is_back(self):
        self.kill_at_each_place(self.to_agent, self.served.kill, self.served.start)

    def test_a_relay_killed_at_any_write_of_its_mount_is_replaced_without_cleaning(self):
        def start():
            self.relaying = self.start_relay()

        self.kill_at_each_place(self.to_agent, lambda: self.relaying.kill(), start)
        self.assertEqual(self.closings(), 0)

    # --- between a relay and its reader

    def test_a_relay_killed_at_any_write_of_a_readers_mount_is_replaced_without_cleaning(self):
        def start():
            self.relaying = self.start_relay()

        self.kill_at_each_place(self.to_relay, lambda: self.relaying.kill(), start)
        self.assertEqual(self.closings(), 0)

    def test_a_reader_killed_at_any_write_of_its_mount_is_replaced(self):
        def start():
            self.reader = self.start_reader()

        self.kill_at_each_place(self.to_relay, lambda: self.reader.stop(), start)
        self.assertEqual(self.closings(), 0)
        self.assertTrue(self.relaying.is_running())


if __name__ == "__main__":
    chain_case.main()
