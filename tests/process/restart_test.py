"""A server that is killed at any moment under writes and started again: the mirror is equal again, soon.

VGW_CYCLES=n repeats it n times (20 unless told).
"""
import os
import random
import threading
import time

import process_case
from support.agent import SLOWNESS, Agent
from support.churn import Churn
from support.generator import Generator
from support.rpc import RpcError

CYCLES = int(os.environ.get("VGW_CYCLES", "20"))

# After a restart: the wait before a reconnect, at most 1 s after one short loss, and a second for all the rest.
LONGEST = 2.0


class RestartTest(process_case.ProcessCase):
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

    def test_killed_and_restarted_servers_end_equal_within_the_promised_time(self):
        self.refused = None
        server = self.server()
        self.network(server, odd=True, remote_macs=500)
        agent = Agent(self.directory / "agent", server.remote)
        self.addCleanup(agent.stop)
        agent.start()
        agent.await_equal(server.read())
        took = []
        delays = random.Random(self.seed)
        for cycle in range(CYCLES):
            # The file holds every change ever made: without this the server takes ever longer to read it.
            server.tell("ovsdb-server/compact")
            generator = Generator(server.columns, self.seed + cycle + 1, odd=True)
            self.kill_under_writes(server, generator, delays.uniform(0, 0.3))
            server.start()
            took.append(agent.await_equal(server.read()))
        print(f"{CYCLES} cycles; equal after {max(took):.2f} s at most, {sorted(took)[len(took) // 2]:.2f} s in the median")
        self.assertLess(max(took), LONGEST * SLOWNESS)
        self.assertEqual(agent.stop(), 0)

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
            server.create(process_case.schema("older"))
            server.start()
            self.network(server, remote_macs=100)
            agent.await_equal(server.read())


if __name__ == "__main__":
    process_case.main()
