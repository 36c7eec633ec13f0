"""A server that is killed at any moment under writes and started again: the mirror is equal again, soon, and with it the
copies of all that read: a library peer, one behind a relay, and `vgwctl watch`, which tells real differences only.

VGW_CYCLES=n repeats it n times (75 unless told, in each of the four that ./test runs side by side; 8 under a sanitizer).
"""
import os
import random
import threading
import time

import chain_case
from support import projection
from support.agent import SLOWNESS, Agent, volume
from support.churn import Churn
from support.generator import Generator
from support.rpc import RpcError

CYCLES = int(os.environ.get("VGW_CYCLES", volume(75, 8)))

# After a restart: the wait before a reconnect, at most 1 s after one short loss, and a second for all the rest.
LONGEST = 2.0

# The readers are asked one after the other, beside all else that a test machine does.
LONGEST_OF_ALL = 4.0


class RestartTest(chain_case.ChainCase):
    def write(self, server, generator, writing, killed):
        """Changes as fast as the server takes them, until it is gone."""
        try:
            churn = Churn(generator, server.read())
            with server.client() as client:
                while True:
                    client.transact(churn.step())
                    writing.set()
        except RpcError as error:
            if not killed.is_set():
                self.refused = error
                writing.set()

    def kill_under_writes(self, server, generator, delay):
        writing, killed = threading.Event(), threading.Event()
        writer = threading.Thread(target=self.write, args=(server, generator, writing, killed))
        writer.start()
        self.assertTrue(writing.wait(60))
        time.sleep(delay)
        killed.set()
        server.kill()
        writer.join()
        self.assertIsNone(self.refused)

    def setUp(self):
        super().setUp()
        self.refused = None
        self.begin = time.monotonic()

    def start_chain(self, server):
        """An agent, and each kind of reader that stays through everything."""
        self.agent = Agent(self.directory / "agent", server.remote)
        self.addCleanup(self.agent.stop)
        self.agent.start()
        self.near = self.client(self.agent, "/vgw")
        self.far = self.reader_at(self.relay(self.agent), "/vgw")
        self.watch = self.watched(self.agent)

    def await_all_equal(self, tables):
        """The seconds until the mirror was the tables, and until each reader's copy was."""
        begin = time.monotonic()
        rows = projection.project(tables)
        mirror = self.agent.await_rows(rows)
        self.watch.await_told_rows(rows)
        self.await_told_rows(self.near, rows)
        self.await_told_rows(self.far, rows)
        return mirror, time.monotonic() - begin

    def kill_at_rest(self, server, name):
        """The readers hear of nothing but what changes afterwards."""
        before = self.watch.told()
        server.kill()
        self.far.await_value("false", "get", "/vgw/database", "inStep")
        server.start()
        self.far.await_value("true", "get", "/vgw/database", "inStep")
        self.await_all_equal(self.describe_a_switch(server, name))
        self.assertEqual(self.watch.told() - before, 1)

    def stop_for_a_while(self, server, name):
        """A server that does not run, and says nothing: the readers hear of that, and of no row."""
        before = self.watch.told()
        server.pause()
        self.far.await_value("false", "get", "/vgw/database", "inStep")
        server.resume()
        self.far.await_value("true", "get", "/vgw/database", "inStep")
        self.await_all_equal(self.describe_a_switch(server, name))
        self.assertEqual(self.watch.told() - before, 1)

    def swap_database(self, server, cycle):
        """Another network of the size of the first: what is written leads to ever more rows."""
        server.kill()
        server.create(server.schema)
        server.start()
        with server.client() as client:
            Generator(server.columns, self.seed - cycle - 1, odd=True).fill(client, remote_macs=500)
        self.await_all_equal(server.read())

    def test_killed_and_restarted_servers_end_equal_within_the_promised_time(self):
        server = self.server()
        self.network(server, odd=True, remote_macs=500)
        self.start_chain(server)
        self.await_all_equal(server.read())
        took = []
        delays = random.Random(self.seed)
        for cycle in range(CYCLES):
            # The file holds every change ever made: without this the server takes ever longer to read it.
            server.tell("ovsdb-server/compact")
            generator = Generator(server.columns, self.seed + cycle + 1, odd=True)
            self.kill_under_writes(server, generator, delays.uniform(0, 0.1))
            server.start()
            took.append(self.await_all_equal(server.read()))
            self.assertEqual(self.watch.faults(), [])
            if cycle % 5 == 0:
                self.kill_at_rest(server, f"cycle {cycle}")
            if cycle % 15 == 7:
                self.swap_database(server, cycle)
            if cycle % 15 == 11:
                self.stop_for_a_while(server, f"stopped {cycle}")
        self.tell(took)
        self.assertLess(max(mirror for mirror, _ in took), LONGEST * SLOWNESS)
        self.assertLess(max(readers for _, readers in took), LONGEST_OF_ALL * SLOWNESS)
        self.assertEqual([line for one in (self.near, self.far) for line in one.told if "closed" in line], [])
        self.assertEqual(self.agent.stop(), 0)

    def tell(self, took):
        rate = CYCLES / (time.monotonic() - self.begin)
        print(f"{CYCLES} cycles, {rate:.2f} a second, {self.watch.told()} lines of watch, none without a difference")
        print("equal at most and in the median after")
        for what, times in zip(("mirror", "all readers"), zip(*took)):
            print(f"  {what}: {max(times):.2f} s, {sorted(times)[len(times) // 2]:.2f} s")

    def test_ten_thousand_rows_are_equal_after_a_kill_between_two_churns(self):
        server = self.server()
        generator = self.network(server, remote_macs=volume(10000, 1000))
        self.start_chain(server)
        self.await_all_equal(server.read())
        for _ in range(2):
            self.churn(server, generator, 1000)
            self.kill_under_writes(server, generator, 0.2)
            server.start()
            self.churn(server, generator, 1000)
            self.await_all_equal(server.read())
        self.assertEqual(self.watch.faults(), [])
        self.assertEqual(self.agent.stop(), 0)

    def test_a_server_that_comes_back_with_an_older_copy_ends_equal(self):
        server = self.server()
        generator = self.network(server, remote_macs=100)
        server.stop()
        older = server.file.read_bytes()
        server.start()
        with Agent(self.directory / "agent", server.remote) as agent:
            self.churn(server, generator, 200)
            agent.await_equal(server.read())
            server.kill()
            server.file.write_bytes(older)
            server.start()
            agent.await_equal(server.read())

    def test_a_server_that_comes_back_with_the_other_schema_ends_equal(self):
        server = self.server()
        self.network(server, remote_macs=100)
        with Agent(self.directory / "agent", server.remote) as agent:
            agent.await_equal(server.read())
            server.kill()
            server.create(chain_case.schema("older"))
            server.start()
            self.network(server, remote_macs=100)
            agent.await_equal(server.read())


if __name__ == "__main__":
    chain_case.main()
