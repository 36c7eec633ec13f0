"""What vgwd says of its session and writes to its logs, as seen from outside."""
import process_case
from support.agent import Agent

SESSION = "/vgw/status/ovsdbSessionStatus"


class SessionTest(process_case.ProcessCase):
    def agent(self, server, *options):
        agent = Agent(self.directory / "agent", server.remote, *options, watch=True)
        self.addCleanup(agent.stop)
        return agent.start()

    def await_value(self, agent, attribute, value):
        place = f"{SESSION}.{attribute}"
        agent.await_that(lambda: agent.heard_value(place) == value, f"{place} becomes {value}")

    def test_watch_prints_the_session_over_a_restart_of_the_server(self):
        server = self.server()
        agent = self.agent(server)
        self.await_value(agent, "numSuccessfulMsg", "1")
        self.await_value(agent, "sessionState", "stateConnected")
        self.assertEqual(agent.heard_value("/vgw/status.running"), "true")
        self.assertEqual(agent.heard_value(f"{SESSION}.lastSuccessfulMsg"), '"Monitor request"')
        server.kill()
        agent.await_said("out of step")
        server.start()
        self.await_value(agent, "numSuccessfulMsg", "2")
        self.assertIsNone(agent.heard_value(f"{SESSION}.numFailedMsg"))
        self.assertEqual(agent.heard_value(f"{SESSION}.sessionState"), "stateConnected")
        self.assertEqual(agent.stop(), 0)
        self.assertEqual(agent.heard_value("/vgw/status.running"), "false")

    def test_a_method_that_the_server_lacks_is_written_down_as_failed(self):
        server = self.server()
        server.tell("ovsdb-server/disable-monitor-cond")
        agent = self.agent(server)
        self.await_value(agent, "numSuccessfulMsg", "1")
        self.assertEqual(agent.heard_value(f"{SESSION}.numFailedMsg"), "2")
        self.assertEqual(agent.heard_value(f"{SESSION}.lastErrorCode"), '"unknown method"')
        self.assertIn("unknown method; monitor_cond of", agent.heard_value(f"{SESSION}.lastFailedMsgDetail"))
        self.await_value(agent, "sessionState", "stateConnected")

    def test_each_log_destination_has_its_level(self):
        server = self.server()
        log = self.directory / "vgwd.log"
        agent = self.agent(server, "--log-file", str(log), "-vconsole:warn", "-vfile:dbg")
        agent.await_that(lambda: log.exists() and "in step by" in log.read_text(), "the log file is written")
        self.assertIn("debug: ", log.read_text())
        self.assertEqual(agent.said(), "")
        server.kill()
        agent.await_said("out of step")

    def test_without_a_log_file_a_level_of_the_file_writes_one_in_the_run_directory(self):
        server = self.server()
        agent = self.agent(server, "-vfile:info")
        log = agent.directory / "vgwd.log"
        agent.await_that(lambda: log.exists() and "in step by" in log.read_text(), "the log file is written")


if __name__ == "__main__":
    process_case.main()
