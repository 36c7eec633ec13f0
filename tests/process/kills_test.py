"""Agents and servers that are killed under load, with readers that mount the tree."""
import os
import random
import time

import serve_case
from support.agent import Agent
from support.churn import Churn

CYCLES = int(os.environ.get("VGW_CYCLES", "10"))


class KillsTest(serve_case.ServeCase):
    def churn_for(self, client, churn, steps):
        for _ in range(steps):
            client.transact(churn.step())

    def test_killed_agents_leave_nothing_behind_and_their_readers_converge(self):
        db = self.server()
        generator = self.network(db, remote_macs=200)
        agent = Agent(self.directory / "agent", db.remote)
        self.addCleanup(agent.stop)
        chance = random.Random(self.seed)
        churn = Churn(generator, db.read())
        agent.start()
        begin = time.monotonic()
        readers = [self.client(agent, "/vgw", reconnect=True) for _ in range(5)]
        with db.client() as client:
            for cycle in range(CYCLES):
                until = time.monotonic() + chance.random() * 0.3
                while time.monotonic() < until:
                    client.transact(churn.step())
                agent.kill()
                self.churn_for(client, churn, 5)
                agent.start()
                tables = db.read()
                for reader in readers[:2] if cycle + 1 < CYCLES else readers:
                    self.await_rows(reader, tables)
        print(f"{CYCLES} kills of a vgwd with 5 readers, {CYCLES / (time.monotonic() - begin):.2f} a second")
        self.assertEqual(agent.stop(), 0)
        left = {path.name for path in agent.directory.iterdir()} - {"said", "heard", "vgwd.lock"}
        self.assertEqual(left, set())

    def test_killed_servers_are_survived_with_readers_mounted(self):
        db = self.server()
        generator = self.network(db, remote_macs=200)
        agent = self.agent(db)
        readers = self.client(agent, "/vgw", copies=5)
        self.await_rows(readers, db.read())
        for _ in range(min(CYCLES, 5)):
            churn = Churn(generator, db.read())
            with db.client() as client:
                self.churn_for(client, churn, 50)
            db.kill()
            readers.await_value("false", "get", "/vgw/database", "inStep")
            db.start()
            self.await_rows(readers, db.read())
        self.assertEqual(sum("closed" in line for line in readers.told), 0)


if __name__ == "__main__":
    serve_case.main()
