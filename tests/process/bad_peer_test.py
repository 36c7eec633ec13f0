"""A peer that is not what it should be is named, the mirror is kept, and all is well again once the peer is."""
import socket
import threading

import process_case
from support import older_schema, ovs
from support.agent import Agent, once
from support.lab import Server


class FakeServer:
    """Takes connections and answers each with the same bytes, whatever it is asked."""

    def __init__(self, path, answer):
        self.path, self._answer = path, answer
        self.connections = 0
        self._listener = socket.socket(socket.AF_UNIX, socket.SOCK_STREAM)
        self._listener.bind(str(path))
        self._listener.listen(8)
        threading.Thread(target=self._serve, daemon=True).start()

    def close(self):
        self._listener.shutdown(socket.SHUT_RDWR)
        self._listener.close()
        self.path.unlink(missing_ok=True)

    def _serve(self):
        while True:
            try:
                peer, _ = self._listener.accept()
            except OSError:
                return
            self.connections += 1
            threading.Thread(target=self._answer_one, args=(peer,), daemon=True).start()

    def _answer_one(self, peer):
        with peer:
            try:
                peer.sendall(self._answer)
                while peer.recv(4096):
                    pass
            except OSError:
                pass


class BadPeerTest(process_case.ProcessCase):
    def agent(self, remote):
        agent = Agent(self.directory / "agent", remote)
        self.addCleanup(agent.stop)
        return agent.start()

    def test_an_unreachable_remote_is_named_and_tried_until_it_is_there(self):
        server = Server(self.directory / "server")
        self.addCleanup(server.stop)
        agent = self.agent(server.remote)
        agent.await_said(str(server.socket))
        server.start()
        agent.await_equal(server.read())

    def test_once_on_an_unreachable_remote_fails_and_names_it(self):
        done = once(f"unix:{self.directory}/nobody.sock", self.directory)
        self.assertEqual(done.returncode, 1)
        self.assertIn("nobody.sock", done.stderr)
        self.assertEqual(done.stdout, "")

    def garbage_is_named_and_survived(self, answer, *words):
        server = self.server()
        self.network(server, remote_macs=50)
        path = self.directory / "other.sock"
        fake = FakeServer(path, answer)
        agent = self.agent(f"unix:{path}")
        agent.await_said(*words)
        self.assertTrue(agent.is_running())
        fake.close()
        path.symlink_to(server.socket)
        agent.await_equal(server.read())

    def test_words_instead_of_json_are_named_and_survived(self):
        self.garbage_is_named_and_survived(b"HTTP/1.1 400 Bad Request\r\n\r\n", "other.sock")

    def test_json_that_is_no_answer_is_named_and_survived(self):
        self.garbage_is_named_and_survived(b'{"id":null,"result":[1,2,3],"error":null}[]{"method":7}', "other.sock")

    def test_json_that_is_nested_too_deep_is_named_and_survived(self):
        self.garbage_is_named_and_survived(b"[" * 100000, "other.sock")

    def test_bytes_that_are_no_text_are_named_and_survived(self):
        self.garbage_is_named_and_survived(bytes(range(256)) * 64, "other.sock")

    def test_a_missing_column_is_named_and_the_rest_is_mirrored(self):
        server = self.server(older_schema.without_column(ovs.packaged_schema(), "Logical_Switch", "description"))
        self.network(server, remote_macs=50)
        agent = self.agent(server.remote)
        agent.await_said("Logical_Switch", "description")
        agent.await_equal(server.read())

    def test_a_missing_table_is_named_and_the_rest_is_mirrored(self):
        server = self.server(older_schema.without_table(ovs.packaged_schema(), "Manager"))
        self.network(server, remote_macs=50)
        agent = self.agent(server.remote)
        agent.await_said("Manager")
        agent.await_equal(server.read())

    def test_a_vanished_database_is_named_and_the_mirror_is_kept_until_it_is_back(self):
        server = self.server()
        self.network(server, remote_macs=50)
        agent = self.agent(server.remote)
        tables = server.read()
        agent.await_equal(tables)
        said = len(agent.said())
        server.tell("ovsdb-server/remove-db", "hardware_vtep")
        agent.await_that(lambda: "hardware_vtep" in agent.said()[said:], "vgwd names the database that is gone")
        agent.await_equal(tables)
        server.tell("ovsdb-server/add-db", server.file)
        with server.client() as client:
            row = {"name": "later", "tunnel_key": 77}
            client.transact([{"op": "insert", "table": "Logical_Switch", "row": row}])
        agent.await_equal(server.read())

    def test_a_schema_that_is_changed_while_connected_ends_equal(self):
        server = self.server()
        self.network(server, remote_macs=50)
        agent = self.agent(server.remote)
        agent.await_equal(server.read())
        server.convert(process_case.schema("older"))
        self.assertEqual(server.schema["version"], "1.2.0")
        agent.await_equal(server.read())


if __name__ == "__main__":
    process_case.main()
