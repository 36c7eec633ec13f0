"""A lost connection costs the mirror nothing but time."""
import time

import process_case
from support.agent import SLOWNESS, Agent
from support.proxy import Proxy


class ReconnectTest(process_case.ProcessCase):
    def setUp(self):
        super().setUp()
        self.db = self.server()
        self.generator = self.network(self.db, remote_macs=300)
        self.proxy = Proxy(self.directory / "proxy.sock", self.db.socket)
        self.addCleanup(self.proxy.close)

    def agent(self, watch=False):
        agent = Agent(self.directory / "agent", self.proxy.remote, watch=watch)
        self.addCleanup(agent.stop)
        return agent.start()

    def describe_switch(self, text):
        """One change that --watch prints."""
        with self.db.client() as client:
            row = {"description": text}
            client.transact([{"op": "update", "table": "Physical_Switch", "where": [["name", "==", "tor-1"]], "row": row}])

    def cut_and_await_reconnect(self, agent):
        before = self.proxy.connections
        self.proxy.cut()
        agent.await_that(lambda: self.proxy.connections > before, "vgwd connects again")

    def test_a_reconnect_to_an_unchanged_database_tells_nobody(self):
        agent = self.agent(watch=True)
        agent.await_equal(self.db.read())
        self.describe_switch("before")
        agent.await_heard("before")
        told = len(agent.heard_of_rows())
        for turn in range(3):
            self.cut_and_await_reconnect(agent)
            self.describe_switch(f"after {turn}")
            agent.await_heard(f"after {turn}")
        after = agent.heard_of_rows()[told:]
        # Each turn's one change was told, and nothing else.
        self.assertEqual([f"after {n}" in line for n, line in enumerate(after)], [True] * 3, after)

    def test_what_changed_while_cut_off_is_told_and_nothing_else(self):
        agent = self.agent(watch=True)
        agent.await_equal(self.db.read())
        told = len(agent.heard_of_rows())
        self.proxy.limit = 0
        self.cut_and_await_reconnect(agent)
        self.describe_switch("while cut off")
        self.proxy.limit = None
        agent.await_equal(self.db.read())
        after = agent.heard_of_rows()[told:]
        self.assertEqual(len(after), 1, after)
        self.assertIn("while cut off", after[0])

    def test_a_first_copy_that_is_cut_at_any_byte_ends_equal(self):
        tables = self.db.read()
        for limit in (1, 100, 1000, 10000, 50000):
            with self.subTest(limit=limit):
                self.proxy.limit = limit
                cut_before = self.proxy.cuts
                with Agent(self.directory / f"agent-{limit}", self.proxy.remote) as agent:
                    agent.await_that(lambda: self.proxy.cuts > cut_before, "the proxy cuts the first copy")
                    self.proxy.limit = None
                    agent.await_equal(tables)

    def test_a_cut_amid_changes_ends_equal(self):
        agent = self.agent()
        for _ in range(4):
            self.churn(self.db, self.generator, 100)
            self.proxy.cut()
            self.churn(self.db, self.generator, 100)
        agent.await_equal(self.db.read())

    def test_a_server_that_does_not_answer_for_a_while_is_said_and_waited_for(self):
        agent = self.agent()
        agent.await_equal(self.db.read())
        in_step = agent.said().count("in step by")
        self.db.pause()
        agent.await_said("silent; the mirror may be out of step", timeout=4)
        time.sleep(2)
        self.db.resume()
        agent.await_said("speaks again")
        self.churn(self.db, self.generator, 10)
        agent.await_equal(self.db.read())
        self.assertEqual(agent.said().count("in step by"), in_step)

    def test_a_server_that_never_answers_again_is_left(self):
        agent = self.agent()
        agent.await_equal(self.db.read())
        self.db.pause()
        agent.await_said("no answer for", timeout=30)
        self.db.resume()
        agent.await_equal(self.db.read())

    def test_a_dead_link_to_a_living_server_is_left_within_the_promised_time(self):
        agent = self.agent()
        agent.await_equal(self.db.read())
        for _ in range(3):
            self.proxy.swallow()
            self.churn(self.db, self.generator, 10)
            self.assertLess(agent.await_equal(self.db.read()), 2 * SLOWNESS)


if __name__ == "__main__":
    process_case.main()
