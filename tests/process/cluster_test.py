"""A cluster of three servers whose leader is killed while people watch: they see what changed in the database, and nothing else."""
import json
import threading
import time

import chain_case
from support import ctl
from support.agent import SLOWNESS, Agent
from support.churn import Churn
from support.cluster import Cluster
from support.generator import Generator
from support.rpc import RpcError

ROUNDS = 3


class ClusterTest(chain_case.ChainCase):
    def setUp(self):
        super().setUp()
        self.cluster = Cluster(self.directory / "cluster")
        self.addCleanup(self.cluster.stop)
        self.cluster.start()
        self.generator = Generator(self.cluster.columns, self.seed)
        with self.cluster.client() as client:
            self.generator.fill(client, remote_macs=200)
        leader = self.cluster.leader()
        first_the_leader = sorted(self.cluster.members, key=lambda member: member is not leader)
        self.agent = Agent(self.directory / "agent", ",".join(member.remote for member in first_the_leader))
        self.addCleanup(self.agent.stop)
        self.agent.start()
        self.near = self.client(self.agent, "/vgw")
        self.watch = self.watched(self.agent)
        self.watch.await_rows(self.cluster.read())

    def switches_shown(self):
        """How many switches `vgwctl show` prints."""
        done = ctl.run(self.remote(self.agent), "-f", "json", "show", "/vgw/status/ovsdb")
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        return len(json.loads(done.stdout)["children"]["logicalSwitch"])

    def await_all_equal(self, tables):
        self.agent.await_equal(tables)
        self.watch.await_rows(tables)
        self.await_rows(self.near, tables)

    def test_watch_tells_nothing_when_a_leader_is_killed_and_show_is_answered_meanwhile(self):
        for turn in range(ROUNDS):
            leader = self.cluster.leader()
            tables = self.cluster.read()
            self.await_all_equal(tables)
            before = self.watch.told()
            leader.kill()
            begin = time.monotonic()
            shown = self.switches_shown()
            self.assertLess(time.monotonic() - begin, 1 * SLOWNESS)
            self.assertEqual(shown, len(tables["Logical_Switch"]))
            self.assertFalse(self.cluster.leader() is leader)
            self.near.await_value("true", "get", "/vgw/database", "inStep")
            self.await_all_equal(self.describe_a_switch(self.cluster, f"turn {turn}"))
            self.assertEqual(self.watch.told() - before, 1)
            self.cluster.rejoin(leader)

    def test_a_member_that_was_stopped_while_people_wrote_takes_nothing_back(self):
        leader = self.cluster.leader()
        late, _ = (member for member in self.cluster.members if member is not leader)
        agent = Agent(self.directory / "late", f"{leader.remote},{late.remote}", "-v", "dbg")
        self.addCleanup(agent.stop)
        agent.start()
        watch = self.watched(agent)
        watch.await_rows(self.cluster.read())
        late.pause()
        self.addCleanup(late.resume)
        for turn in range(5):
            tables = self.describe_a_switch(self.cluster, f"turn {turn}")
        watch.await_rows(tables)
        before = watch.told()
        # A real server tells how far its log has come.
        agent.await_said("the cluster's log is at ")
        leader.kill()
        agent.await_said(f"{leader.remote}: ")
        time.sleep(0.5)
        late.resume()
        agent.await_equal(self.cluster.read())
        tables = self.describe_a_switch(self.cluster, "afterwards")
        agent.await_equal(tables)
        watch.await_rows(tables)
        self.assertEqual(watch.told() - before, 1)
        self.cluster.rejoin(leader)

    def write(self, client, churn, killed):
        """Changes as fast as the leader takes them, until it is gone."""
        try:
            while True:
                client.transact(churn.step())
        except RpcError as error:
            if not killed.is_set():
                self.refused = error

    def kill_under_writes(self, leader):
        churn = Churn(self.generator, self.cluster.read())
        killed = threading.Event()
        with self.cluster.client() as client:
            writer = threading.Thread(target=self.write, args=(client, churn, killed))
            writer.start()
            time.sleep(0.3)
            killed.set()
            leader.kill()
            writer.join()

    def test_a_leader_that_is_killed_under_writes_leaves_every_copy_equal_behind_the_next_one(self):
        self.refused = None
        for _ in range(ROUNDS):
            leader = self.cluster.leader()
            self.kill_under_writes(leader)
            self.assertIsNone(self.refused)
            self.await_all_equal(self.cluster.read())
            self.cluster.rejoin(leader)
        self.assertEqual(self.watch.faults(), [])
        self.assertEqual([line for line in self.near.told if "closed" in line], [])


if __name__ == "__main__":
    chain_case.main()
