"""How long a change in the database takes to a reader, with nobody else and beside readers that have stopped.

VGW_STOPPED=n stops n readers (32 unless told), VGW_ROUNDS=n repeats the comparison (3 unless told). Both latencies are of the same
run, in turns: each round measures one, then the others, and the median of the rounds' ratios is judged. Beside one stopped reader
each change is judged, beside many that of one attribute. One that leads to some thirty others is measured there too: each of
them is marked for each of the stopped readers.
"""
import os
import statistics
import struct
import time
from collections import namedtuple

import serve_case
from support import attrlog
from support.agent import SLOWNESS

STOPPED = int(os.environ.get("VGW_STOPPED", "32"))
ROUNDS = int(os.environ.get("VGW_ROUNDS", "3"))
SAMPLES = 200
SWITCHES = 200
REMOTE_MACS = 1000

# A column of the logical switches, and how a reader is sent its nth value.
Change = namedtuple("Change", "column value attribute payload")
ONE = Change("description", lambda number: f"text {number}", 387, lambda number: f"text {number}".encode())
MANY = Change("tunnel_key", lambda number: number, 388, lambda number: struct.pack(">I", number))

# What a stopped reader may cost the others, at most.
GREATEST_RATIO = 2.0

# More than a stopped reader's socket and ring hold.
FLOODS = 40


class LatencyTest(serve_case.ServeCase):
    def setUp(self):
        super().setUp()
        self.db = self.server()
        self.network(self.db, remote_macs=REMOTE_MACS, logical_switches=SWITCHES)
        self.switches = sorted(self.db.read()["Logical_Switch"])
        self.served = self.agent(self.db)
        self.served.await_said("in step")
        self.writer = self.db.client()
        self.addCleanup(self.writer.close)
        self.reader = attrlog.Peer(self.socket(self.served))
        self.addCleanup(self.reader.close)
        self.reader.mounted(1, "/vgw/status/ovsdb")
        self.reader.await_link(attrlog.SYNCED)
        self.number = 0

    def await_sent(self, change):
        wanted = change.payload(self.number)
        while (frame := self.reader.next()) is not None:
            if frame.kind == attrlog.RECORD and frame.attribute == change.attribute and frame.payload == wanted:
                return
        self.fail("the connection has ended")

    def latency(self, change):
        """The seconds from the request to the database until the reader has what it changed."""
        self.number += 1
        where = [["_uuid", "==", ["uuid", self.switches[self.number % SWITCHES]]]]
        row = {change.column: change.value(self.number)}
        begin = time.monotonic()
        self.writer.transact([{"op": "update", "table": "Logical_Switch", "where": where, "row": row}])
        self.await_sent(change)
        return time.monotonic() - begin

    def median_latency(self, change):
        for _ in range(20):
            self.latency(change)
        return statistics.median(self.latency(change) for _ in range(SAMPLES))

    def flood(self):
        """Changes of all remote rows, again and again: whoever does not read has its ring full and owes."""
        for turn in range(FLOODS):
            row = {"ipaddr": f"192.0.2.{turn % 200 + 1}"}
            self.writer.transact([{"op": "update", "table": "Ucast_Macs_Remote", "where": [], "row": row}])
            self.latency(ONE)

    def sessions(self, watcher):
        return [name.strip("'") for name in watcher.ask("list", "/vgw/sessions", "entry").split()]

    def owed_of(self, watcher):
        """What each session owes, in order, but for two: the reader's and that of who asks."""
        return sorted(int(watcher.ask("get", f"/vgw/sessions/{name}", "owed")) for name in self.sessions(watcher))[2:]

    def stopped_readers(self, watcher, count):
        """So many readers that have all there is, read no more, and are owed something."""
        client = self.client(self.served, "/vgw", copies=count)
        client.await_value(str(count), "synced", timeout=60)
        client.pause()
        self.flood()
        watcher.await_that(lambda: self.are_owed(watcher, count), "each of them is owed something")
        return client

    def are_owed(self, watcher, count):
        owed = self.owed_of(watcher)
        return len(owed) == count and min(owed) > 0

    def test_stopped_readers_at_most_double_the_latency_of_the_others(self):
        watcher = self.client(self.served, "/vgw/sessions")
        watcher.await_told("synced")
        took = {(change, count): [] for change in (ONE, MANY) for count in (0, 1, STOPPED)}
        for _ in range(ROUNDS):
            self.measure(took, 0)
            for count in (1, STOPPED):
                client = self.stopped_readers(watcher, count)
                self.measure(took, count)
                client.stop()
                watcher.await_that(lambda: len(self.sessions(watcher)) == 2, "they are gone")
        ratios = {(change, count): self.tell(took, change, count) for change in (ONE, MANY) for count in (1, STOPPED)}
        for judged in ((ONE, 1), (MANY, 1), (ONE, STOPPED)):
            self.assertLess(ratios[judged], GREATEST_RATIO, judged)

    def test_stopped_readers_cost_no_time_while_nothing_changes(self):
        watcher = self.client(self.served, "/vgw/sessions")
        watcher.await_told("synced")
        self.stopped_readers(watcher, STOPPED)
        self.await_rest(watcher)
        before = self.served.busy()
        time.sleep(1)
        # The ticks of the mirror's own watch over its server are in it.
        self.assertLess(self.served.busy() - before, 0.05 * SLOWNESS)

    def measure(self, took, count):
        for change in (ONE, MANY):
            took[change, count].append(self.median_latency(change))

    def tell(self, took, change, count):
        """The ratio in the median of the rounds."""
        alone, beside = took[change, 0], took[change, count]
        ratio = statistics.median(many / none for none, many in zip(alone, beside))
        print(
            f"{change.column} to reader, p50: alone {statistics.median(alone) * 1e6:.0f} us, beside {count} stopped "
            f"{statistics.median(beside) * 1e6:.0f} us; {ratio:.2f} times in the median of {ROUNDS} rounds"
        )
        return ratio


if __name__ == "__main__":
    serve_case.main()
