"""What the agent tells of those who mount its tree, and of its database."""
import time

import serve_case


class SessionsTest(serve_case.ServeCase):
    def setUp(self):
        super().setUp()
        self.db = self.server()

    def sessions(self, client):
        """The paths of the sessions that the client sees."""
        return ["/vgw/sessions/" + name.strip("'") for name in client.ask("list", "/vgw/sessions", "entry").split()]

    def await_sessions(self, client, count):
        client.await_that(lambda: len(self.sessions(client)) == count, f"{count} sessions are told")

    def get(self, client, path, attribute):
        return client.ask("get", path, attribute)

    def test_a_session_is_told_with_who_reads_what_and_how_much(self):
        self.network(self.db, remote_macs=50)
        client = self.client(self.agent(self.db), "/vgw", "/vgw/cliConfig:w")
        client.await_told("synced", 2)
        self.await_sessions(client, 1)
        (path,) = self.sessions(client)
        self.assertRegex(self.get(client, path, "identity"), r"^'uid \d+'$")
        self.assertEqual(self.get(client, path, "right"), "'peerWrites'")
        self.assertEqual(self.get(client, path, "link"), "'overUnix'")
        client.await_value("'read'", "get", path, "mount", "'/vgw'")
        client.await_value("'write'", "get", path, "mount", "'/vgw/cliConfig'")
        client.await_that(lambda: int(self.get(client, path, "recordsOut")) > 100, "what was sent is told")
        client.await_value("0", "get", path, "owed")
        client.ask("unmount", "/vgw/cliConfig")
        client.await_value("''", "get", path, "mount", "'/vgw/cliConfig'")

    def test_sessions_that_end_go(self):
        agent = self.agent(self.db)
        client = self.client(agent, "/vgw")
        client.await_told("synced /vgw")
        other = self.client(agent, "/vgw/status")
        self.await_sessions(client, 2)
        other.stop()
        self.await_sessions(client, 1)

    def test_the_books_of_the_sessions_come_to_rest(self):
        agent = self.agent(self.db)
        client = self.client(agent, "/vgw", copies=3)
        client.await_value("3", "synced")
        self.await_sessions(client, 3)
        self.await_rest(client)
        before = client.counters()
        time.sleep(3)
        self.assertEqual(client.counters(), before)
        # They have not just stopped: what goes on is told again.
        paths = self.sessions(client)
        told = [self.get(client, path, "recordsOut") for path in paths]
        self.db.vtep_ctl("add-ls", "red")
        client.await_that(
            lambda: all(self.get(client, path, "recordsOut") != old for path, old in zip(paths, told)), "more is told"
        )

    def test_the_database_is_told_with_what_it_is_and_since_when(self):
        client = self.client(self.agent(self.db), "/vgw")
        client.await_value("true", "get", "/vgw/database", "inStep")
        self.assertEqual(client.ask("get", "/vgw/database", "remote"), f"'{self.db.remote}'")
        self.assertRegex(client.ask("get", "/vgw/database", "schemaVersion"), r"^'\d+\.\d+\.\d+'$")
        since = float(client.ask("get", "/vgw/database", "since"))
        self.db.kill()
        client.await_value("false", "get", "/vgw/database", "inStep")
        self.assertNotEqual(client.ask("get", "/vgw/database", "reason"), "''")
        self.assertGreater(float(client.ask("get", "/vgw/database", "since")), since)
        self.db.start()
        client.await_value("true", "get", "/vgw/database", "inStep")
        client.await_value("''", "get", "/vgw/database", "reason")

    def test_rows_that_the_model_can_not_hold_are_told_with_the_columns(self):
        client = self.client(self.agent(self.db), "/vgw")
        client.await_value("true", "get", "/vgw/database", "inStep")
        self.db.vtep_ctl("add-ps", "tor", "--", "set", "Physical_Switch", "tor", 'tunnel_ips="2001:db8::1"')
        client.await_value("1", "get", "/vgw/database", "lostRows")
        self.assertRegex(client.ask("list", "/vgw/database", "lost"), r"^'Physical_Switch [0-9a-f-]{36}'$")
        self.db.vtep_ctl("clear", "Physical_Switch", "tor", "tunnel_ips")
        client.await_value("0", "get", "/vgw/database", "lostRows")
        client.await_value("", "list", "/vgw/database", "lost")

    def test_what_an_older_schema_lacks_is_told(self):
        older = schema_without_statistics()
        client = self.client(self.agent(self.server(older, name="older")), "/vgw")
        client.await_that(lambda: "vlan_stats" in client.ask("list", "/vgw/database", "complaint"), "the column is told")
        self.assertIn("vlan_stats", client.ask("get", "/vgw/database", "reason"))
        self.assertEqual(client.ask("get", "/vgw/database", "inStep"), "false")


def schema_without_statistics():
    """The packaged schema without a column that all its versions have."""
    schema = serve_case.process_case.schema("packaged")
    del schema["tables"]["Physical_Port"]["columns"]["vlan_stats"]
    return schema


if __name__ == "__main__":
    serve_case.main()
