"""vgwd --once prints the mirror and ends; what it is told wrong it says."""
import subprocess

import process_case
from support import agent, projection


class OnceTest(process_case.ProcessCase):
    def test_json_is_the_canonical_dump(self):
        for schema in process_case.SCHEMAS:
            with self.subTest(schema):
                server = self.server(process_case.schema(schema), schema)
                self.network(server, odd=True, remote_macs=200)
                done = agent.once(server.remote, self.directory)
                self.assertEqual(done.returncode, 0, done.stderr)
                expected = projection.canonical_text(projection.project(server.read()))
                self.assertEqual(done.stdout == expected, True, agent.difference(expected, done.stdout))

    def test_the_tree_names_what_the_field_calls_things_by(self):
        server = self.server()
        server.vtep_ctl("add-ps", "tor-1", "--", "add-port", "tor-1", "Ethernet1", "--", "add-ls", "red")
        server.vtep_ctl("set", "Logical_Switch", "red", "tunnel_key=5001", "--", "bind-ls", "tor-1", "Ethernet1", "100", "red")
        server.vtep_ctl("add-ucast-remote", "red", "00:00:5e:00:53:02", "192.0.2.2")
        done = agent.once(server.remote, self.directory, "tree")
        self.assertEqual(done.returncode, 0, done.stderr)
        for name in ("tor-1", "Ethernet1", "red", "5001", "100", "00:00:5e:00:53:02", "192.0.2.2"):
            self.assertIn(name, done.stdout)

    def test_wrong_usage_ends_with_1_and_says_what_is_wrong(self):
        for words, named in (
            (["--no-such-option"], "no-such-option"),
            (["--ovsdb", "carrier-pigeon:here"], "carrier-pigeon"),
            (["--ovsdb", "tcp:192.0.2.1:0"], "tcp:192.0.2.1:0"),
            (["--once", "-f", "yaml", "--ovsdb", "unix:here"], "yaml"),
        ):
            with self.subTest(words):
                done = subprocess.run([agent.program(), *words], capture_output=True, text=True, timeout=60, cwd=self.directory)
                self.assertEqual(done.returncode, 1, done.stderr)
                self.assertIn(named, done.stderr + done.stdout)


if __name__ == "__main__":
    process_case.main()
