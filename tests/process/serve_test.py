"""Other processes mount the tree of a running agent."""
import os
import stat
import subprocess
import time

import serve_case
from support import projection
from support.agent import Agent, program
from support.proxy import Proxy


class ServeTest(serve_case.ServeCase):
    def setUp(self):
        super().setUp()
        self.db = self.server()

    def mode(self, path):
        return stat.S_IMODE(os.stat(path).st_mode)

    def second_start(self, agent):
        return subprocess.run(
            [program(), "--ovsdb", self.db.remote, "--run-dir", str(agent.directory)],
            capture_output=True, text=True, timeout=20, check=False,
        )

    def test_a_reader_has_the_rows_of_the_database_and_follows_them(self):
        generator = self.network(self.db, remote_macs=300)
        client = self.client(self.agent(self.db), "/vgw")
        client.await_told("synced /vgw")
        self.await_rows(client, self.db.read())
        self.churn(self.db, generator, 200)
        self.await_rows(client, self.db.read())

    def agent_without_answer(self, name):
        """An agent whose database says nothing until the proxy's gate is open."""
        proxy = Proxy(self.directory / f"{name}.sock", self.db.socket)
        self.addCleanup(proxy.close)
        proxy.gate.clear()
        agent = Agent(self.directory / name, proxy.remote)
        self.addCleanup(agent.stop)
        return agent.start(), proxy

    def test_a_reader_that_comes_amid_the_first_copy_gets_all_of_it_at_once(self):
        self.network(self.db, remote_macs=50)
        expected = projection.canonical_text(serve_case.told_rows(projection.project(self.db.read())))
        for turn in range(3):
            begin = time.monotonic()
            agent, proxy = self.agent_without_answer(f"agent{turn}")
            client = self.client(agent, "/vgw")
            time.sleep(0.2)
            proxy.gate.set()
            took = time.monotonic() - begin
            client.await_told("synced /vgw")
            if took < 4:  # else nobody waited for it any longer
                return self.assertEqual(client.dump(self.directory / "client.json"), expected)
        self.fail("never was the agent started and asked within 4 s")

    def test_a_reader_is_let_in_although_the_database_says_nothing(self):
        agent, proxy = self.agent_without_answer("agent")
        client = self.client(agent, "/vgw")
        client.await_told("synced /vgw", timeout=8)
        self.assertEqual(client.ask("get", "/vgw/database", "inStep"), "false")
        proxy.gate.set()
        client.await_value("true", "get", "/vgw/database", "inStep")

    def test_a_reader_that_comes_before_the_database_gets_it_when_it_comes(self):
        self.db.stop()
        client = self.client(self.agent(self.db), "/vgw")
        client.await_told("synced /vgw")
        self.assertEqual(client.ask("get", "/vgw/status", "running"), "true")
        self.db.start()
        self.network(self.db, remote_macs=50)
        self.await_rows(client, self.db.read())

    def test_what_is_not_there_is_refused_by_name(self):
        client = self.client(self.agent(self.db), "/vgw/nothing")
        client.await_told("refused /vgw/nothing: /vgw/nothing does not exist")

    def test_a_path_above_one_that_is_mounted_is_refused_by_name_and_the_rest_goes_on(self):
        agent = self.agent(self.db)
        client = self.client(agent, "/vgw/status")
        client.await_told("synced /vgw/status")
        client.ask("mount", "/vgw")
        client.await_told("refused /vgw: /vgw holds /vgw/status, which is mounted on this connection already")
        client.ask("mount", "/vgw/cliConfig")
        client.await_told("synced /vgw/cliConfig")
        self.assertEqual([line for line in client.told if "closed" in line], [])

    def test_a_path_below_one_that_is_mounted_at_once_is_the_same_copy(self):
        client = self.client(self.agent(self.db), "/vgw", "/vgw/status/ovsdb")
        client.await_told("synced /vgw/status/ovsdb")
        self.await_rows(client, self.db.read())
        self.assertEqual([line for line in client.told if "closed" in line or "refused" in line], [])

    def test_the_socket_and_its_folder_are_the_owners_alone(self):
        made = self.directory / "made"
        agent = subprocess.Popen(
            [program(), "--ovsdb", self.db.remote, "--run-dir", str(made), "-vconsole:off"], stdin=subprocess.DEVNULL
        )
        self.addCleanup(agent.wait)
        self.addCleanup(agent.terminate)
        for _ in range(1000):
            if (made / "vgwd.sock").exists():
                break
            time.sleep(0.01)
        self.assertEqual(self.mode(made), 0o700)
        self.assertEqual(self.mode(made / "vgwd.sock"), 0o600)

    def test_a_second_start_in_the_same_run_directory_is_refused(self):
        agent = self.agent(self.db)
        second = self.second_start(agent)
        self.assertEqual(second.returncode, 1)
        self.assertIn(f"is used by another vgwd (process {agent.pid_file.read_text().strip()})", second.stderr)
        client = self.client(agent, "/vgw/status")
        client.await_told("synced /vgw/status")

    def test_the_socket_of_a_killed_agent_is_replaced(self):
        agent = self.agent(self.db)
        agent.kill()
        self.assertTrue(self.socket(agent).exists())
        self.client(agent.start(), "/vgw/status").await_told("synced /vgw/status")

    def test_a_file_that_is_no_socket_is_left_alone(self):
        place = self.directory / "agent" / "vgwd.sock"
        place.parent.mkdir()
        place.write_text("mine")
        with self.assertRaisesRegex(RuntimeError, "there is something that is no socket"):
            self.agent(self.db)
        self.assertEqual(place.read_text(), "mine")

    def test_a_socket_where_another_process_listens_is_left_alone(self):
        first = self.agent(self.db)
        with self.assertRaisesRegex(RuntimeError, "another process listens there"):
            self.agent(self.db, "--listen", f"unix:{self.socket(first)}", name="second")
        self.client(first, "/vgw/status").await_told("synced /vgw/status")

    def test_an_agent_that_ends_tells_its_readers_why_and_leaves_no_socket(self):
        agent = self.agent(self.db)
        client = self.client(agent, "/vgw/status")
        client.await_told("synced /vgw/status")
        self.assertEqual(agent.stop(), 0)
        client.await_told("closed: the peer: the agent ends")
        self.assertFalse(self.socket(agent).exists())

    def test_an_agent_without_a_place_to_listen_serves_nobody(self):
        agent = self.agent(self.db, "--listen", "none")
        self.assertFalse(self.socket(agent).exists())

    def test_once_neither_listens_nor_takes_the_run_directory(self):
        agent = self.agent(self.db)
        done = subprocess.run(
            [program(), "--ovsdb", self.db.remote, "--run-dir", str(agent.directory), "--once"],
            capture_output=True, text=True, timeout=20, check=False,
        )
        self.assertEqual(done.returncode, 0, done.stderr)
        self.client(agent, "/vgw/status").await_told("synced /vgw/status")

    def test_at_rest_nothing_goes_over_the_link(self):
        self.network(self.db, remote_macs=50)
        agent = self.agent(self.db)
        client = self.client(agent, "/vgw")
        self.await_rows(client, self.db.read())
        other = self.client(agent, "/vgw")
        other.await_told("synced /vgw")
        self.await_rest(client)
        self.await_rest(other)
        before = client.counters(), other.counters()
        time.sleep(3)
        self.assertEqual((client.counters(), other.counters()), before)


if __name__ == "__main__":
    serve_case.main()
