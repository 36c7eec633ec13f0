"""The mirror equals the database, whatever is in it and however it changes."""
import os

import process_case
from support.agent import Agent


class MirrorTest(process_case.ProcessCase):
    def agent(self, server):
        agent = Agent(self.directory / "agent", server.remote)
        self.addCleanup(agent.stop)
        return agent.start()

    def end_equal(self, schema, odd=False, steps=2000, **sizes):
        server = self.server(process_case.schema(schema))
        generator = self.network(server, odd, **sizes)
        agent = self.agent(server)
        self.churn(server, generator, steps)
        agent.await_equal(server.read())
        self.assertEqual(agent.stop(), 0)

    def test_ten_thousand_remote_macs_under_churn_end_equal(self):
        self.end_equal("packaged", steps=4000, remote_macs=10000)

    def test_ten_thousand_remote_macs_on_the_older_schema_end_equal(self):
        self.end_equal("older", steps=4000, remote_macs=10000)

    def test_values_that_no_row_can_hold_leave_the_rest_equal(self):
        self.end_equal("packaged", odd=True)

    def test_values_that_no_row_can_hold_on_the_older_schema_leave_the_rest_equal(self):
        self.end_equal("older", odd=True)

    def test_each_single_change_leaves_an_equal_mirror(self):
        for schema in process_case.SCHEMAS:
            with self.subTest(schema):
                server = self.server(process_case.schema(schema), schema)
                generator = self.network(server, odd=True, remote_macs=30, local_macs=10, logical_switches=5, locators=12)
                with Agent(self.directory / f"agent-{schema}", server.remote) as agent:
                    for _ in range(150):
                        self.churn(server, generator, 1)
                        agent.await_equal(server.read())

    def test_an_empty_database_is_mirrored_empty_and_then_filled(self):
        server = self.server()
        agent = self.agent(server)
        agent.await_equal(server.read())
        self.network(server)
        agent.await_equal(server.read())

    def test_an_agent_killed_amid_changes_starts_again_and_ends_equal(self):
        server = self.server()
        generator = self.network(server)
        agent = self.agent(server)
        for _ in range(3):
            self.churn(server, generator, 200)
            agent.kill()
            agent.start()
        agent.await_equal(server.read())

    def test_changes_that_can_not_be_printed_are_said_once_and_stop_nobody(self):
        server = self.server()
        self.network(server)
        agent = Agent(self.directory / "agent", server.remote, watch=True)
        (self.directory / "agent/heard").symlink_to("/dev/full")
        self.addCleanup(agent.stop)
        agent.start()
        agent.await_said("standard output can't be written")
        server.vtep_ctl("add-ls", "one-more")
        agent.await_equal(server.read())
        self.assertEqual(agent.said().count("standard output can't be written"), 1, agent.said())
        self.assertEqual(agent.stop(), 0)

    def test_who_reads_the_changes_or_the_log_may_go(self):
        server = self.server()
        self.network(server)
        for output in ("heard", "said"):
            agent = Agent(self.directory / output, server.remote, watch=True)
            pipe = self.directory / output / output
            os.mkfifo(pipe)
            reader = os.open(pipe, os.O_RDONLY | os.O_NONBLOCK)
            self.addCleanup(agent.stop)
            agent.start()
            os.close(reader)
            server.vtep_ctl("add-ls", f"without-{output}")
            agent.await_equal(server.read())
            self.assertEqual(agent.stop(), 0)


if __name__ == "__main__":
    process_case.main()
