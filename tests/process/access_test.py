"""Who may not, cannot: identity by role by operation, with real users."""
import os
import shutil
import struct
import tempfile
import unittest
import unittest.mock
from pathlib import Path

import serve_case
from support import attrlog
from support.agent import Agent
from support.tree_client import TreeClient

OWNER, READER, WRITER, STRANGER = 20001, 20002, 20003, 20004
READERS, WRITERS, OTHERS = 20010, 20011, 20012


def as_user(user, *groups):
    """A command's beginning that runs it as that user, the first group its own."""
    supplementary = f"--groups={','.join(map(str, groups[1:]))}" if groups[1:] else "--clear-groups"
    return ["setpriv", f"--reuid={user}", f"--regid={groups[0]}", supplementary]


IDENTITIES = {
    "root": [],
    "the daemon's own user": as_user(OWNER, OWNER),
    "a member of the write group": as_user(WRITER, OTHERS, WRITERS),
    "a user whose own group is the write group": as_user(WRITER, WRITERS),
    "a member of the read group": as_user(READER, OTHERS, READERS),
    "a member of both groups": as_user(READER, OTHERS, READERS, WRITERS),
    "a stranger": as_user(STRANGER, OTHERS),
    "a stranger in the owner's group": as_user(STRANGER, OWNER),
}
# What each may do when only a read group, only a write group, both or none are named.
WRITES, READS, REFUSED = "writes", "reads", "is refused"
OUTSIDE = (REFUSED, REFUSED, REFUSED, REFUSED)
EXPECTED = {
    "root": (WRITES, WRITES, WRITES, WRITES),
    "the daemon's own user": (WRITES, WRITES, WRITES, WRITES),
    "a member of the write group": (REFUSED, REFUSED, WRITES, WRITES),
    "a user whose own group is the write group": (REFUSED, REFUSED, WRITES, WRITES),
    "a member of the read group": (REFUSED, READS, REFUSED, READS),
    "a member of both groups": (REFUSED, READS, WRITES, WRITES),
    "a stranger": OUTSIDE,
    "a stranger in the owner's group": OUTSIDE,
}
SETTINGS = ((), ("--group", str(READERS)), ("--write-group", str(WRITERS)), ("--group", str(READERS), "--write-group", str(WRITERS)))


class Owned(Agent):
    """A vgwd of the user OWNER, in a run directory that it makes itself."""

    def __init__(self, directory, remote, *options):
        super().__init__(directory, remote, *options)
        os.chown(self.directory, OWNER, OWNER)
        self.run_directory = self.directory / "run"
        self._command[self._command.index("--run-dir") + 1] = str(self.run_directory)
        # Who lets a group in has to be a member of it.
        self._command = as_user(OWNER, OWNER, READERS, WRITERS) + self._command


@unittest.skipUnless(os.geteuid() == 0 and shutil.which("setpriv"), "only root can be other users")
class AccessTest(serve_case.ServeCase):
    def setUp(self):
        super().setUp()
        os.chmod(self.directory, 0o755)
        self.db = self.server()
        self.db.socket.chmod(0o777)
        self.db.directory.chmod(0o755)
        # Where other users can run it, whatever the modes of the build's folders are.
        programs = Path(tempfile.mkdtemp(prefix="vgw-programs-"))
        self.addCleanup(shutil.rmtree, programs)
        programs.chmod(0o755)
        self.program = shutil.copy(os.environ["TREE_CLIENT"], programs / "tree_client")

    def owned(self, *options):
        agent = Owned(self.directory / f"agent-{len(options)}-{options[:1]}".replace("'", ""), self.db.remote, *options)
        self.addCleanup(agent.stop)
        return agent.start()

    def attempt(self, agent, prefix):
        """What becomes of a client that reads the status and writes the configuration."""
        environment = dict(os.environ, TREE_CLIENT=str(self.program))
        with unittest.mock.patch.dict(os.environ, environment):
            client = TreeClient(agent.run_directory / "vgwd.sock", "/vgw/status", "/vgw/cliConfig:w", prefix=prefix)
        try:
            client.await_that(lambda: len(client.told) >= 5 or client._process.poll() is not None
                              or any("refused" in line for line in client.told), "it is settled")
            client.await_that(lambda: client._process.poll() is not None or "synced /vgw/status" in client.told, "it reads")
            if "synced /vgw/status" not in client.told:
                return REFUSED
            if any(line.startswith("refused /vgw/cliConfig") for line in client.told):
                return READS
            before = int(client.ask("get", "/vgw/cliConfig", "managerPort"))
            client.ask("set", "/vgw/cliConfig", "managerPort", before + 1)
            return WRITES if self.port(agent) == before + 1 else READS
        finally:
            client.stop()

    def port(self, agent):
        """The manager's port, as the agent itself has it."""
        with TreeClient(agent.run_directory / "vgwd.sock", "/vgw/cliConfig") as root:
            root.await_told("synced")
            return int(root.ask("get", "/vgw/cliConfig", "managerPort"))

    def test_each_identity_may_do_what_its_role_allows_and_no_more(self):
        for setting, options in enumerate(SETTINGS):
            agent = self.owned(*options)
            for name, prefix in IDENTITIES.items():
                with self.subTest(identity=name, options=options):
                    self.assertEqual(self.attempt(agent, prefix), EXPECTED[name][setting])
            agent.stop()

    def test_what_a_writer_wrote_before_it_left_is_applied(self):
        agent = self.owned()
        for port in range(1, 30):
            writer = attrlog.Peer(agent.run_directory / "vgwd.sock")
            entity = writer.mounted(1, "/vgw/cliConfig", writable=True)
            writer.send(attrlog.frame(attrlog.RECORD, entity, 262, struct.pack(">H", port)))
            writer.close()
            agent.await_that(lambda port=port: self.port(agent) == port, f"port {port} is written")

    def test_who_is_refused_at_the_open_socket_is_told_why(self):
        agent = self.owned("--group", str(READERS), "--write-group", str(WRITERS))
        environment = dict(os.environ, TREE_CLIENT=str(self.program))
        with unittest.mock.patch.dict(os.environ, environment):
            client = TreeClient(agent.run_directory / "vgwd.sock", "/vgw/status", prefix=as_user(STRANGER, OTHERS))
        self.addCleanup(client.stop)
        client.await_told(f"closed: the peer: uid {STRANGER} may not read here")
        agent.await_said(f"refused: uid {STRANGER} may not read here")


class ReaderTest(serve_case.ServeCase):
    """What a peer that may only read tries besides. Over tcp readers are let in without a name."""

    def setUp(self):
        super().setUp()
        self.db = self.server()
        self.db.vtep_ctl("add-ls", "red")
        self.agent_ = self.agent(self.db, "--listen", "tcp:127.0.0.1:0", "--tcp-readers", "--listen",
                                 f"unix:{self.directory}/agent/vgwd.sock")
        self.agent_.await_said("listening on tcp:127.0.0.1:")
        self.port = int(self.agent_.said().split("listening on tcp:127.0.0.1:")[1].split()[0])
        self.watcher = self.client(self.agent_, "/vgw")
        self.watcher.await_value("true", "get", "/vgw/database", "inStep")

    def reader(self):
        peer = attrlog.Peer(self.port)
        self.addCleanup(peer.close)
        return peer

    def assert_unharmed(self):
        self.assertEqual(self.watcher.ask("get", "/vgw/cliConfig", "managerPort"), "6632")
        self.assertEqual(self.watcher.ask("get", "/vgw/cliConfig", "enableAgent"), "true")
        self.assertEqual(len(self.watcher.ask("list", "/vgw/status/ovsdb", "logicalSwitch").split()), 1)
        self.client(self.agent_, "/vgw/status").await_told("synced /vgw/status")

    def test_a_reader_is_refused_a_mount_to_write(self):
        with self.assertRaisesRegex(PermissionError, "may only be read"):
            self.reader().mounted(1, "/vgw/cliConfig", writable=True)
        self.assert_unharmed()

    def test_a_record_on_what_is_mounted_to_be_read_ends_the_connection_and_changes_nothing(self):
        peer = self.reader()
        entity = peer.mounted(1, "/vgw/cliConfig")
        peer.send(attrlog.frame(attrlog.RECORD, entity, 262, struct.pack(">H", 7)))
        self.assertIn("readonly", peer.error())
        self.assert_unharmed()

    def test_a_removal_on_what_is_mounted_to_be_read_changes_nothing(self):
        peer = self.reader()
        (uuid,) = [name.strip("'") for name in self.watcher.ask("list", "/vgw/status/ovsdb", "logicalSwitch").split()]
        entity = peer.mounted(1, "/vgw/status/ovsdb")
        peer.send(attrlog.frame(attrlog.RECORD, entity, -263, attrlog.text(uuid)))
        self.assertIn("readonly", peer.error())
        self.assert_unharmed()

    def test_a_snapshot_of_nothing_on_what_is_mounted_to_be_read_removes_nothing(self):
        peer = self.reader()
        entity = peer.mounted(1, "/vgw/status/ovsdb")
        peer.send(attrlog.frame(attrlog.TRANSACTION, entity, 263, struct.pack(">BI", 0, 0)))
        peer.send(attrlog.frame(attrlog.TRANSACTION, entity, 263, struct.pack(">BI", 2, 0)))
        self.assertIn("readonly", peer.error())
        self.assert_unharmed()

    def test_an_entity_that_nobody_asked_for_is_passed_over(self):
        peer = self.reader()
        name = b"\3" + struct.pack(">I", 6) + attrlog.text("xx")
        chain = attrlog.text("Vgw::CliConfig")
        payload = b"\1" + struct.pack(">I", len(chain)) + chain + name + b"\4" + struct.pack(">IQ", 8, 3)
        peer.send(attrlog.frame(attrlog.RECORD, 1, 136, payload))
        peer.send(attrlog.frame(attrlog.RECORD, 3, 262, struct.pack(">H", 7)))
        peer.send(attrlog.link(attrlog.PING, struct.pack(">d", 1.0)))
        self.assertEqual(peer.await_link(attrlog.PONG, attrlog.ERROR)[0], attrlog.PONG)
        self.assert_unharmed()

    def test_a_reader_calls_nothing(self):
        peer = self.reader()
        peer.send(attrlog.link(20, struct.pack(">I", 1) + attrlog.text("/vgw/cliConfig") + attrlog.text("reset") + struct.pack(">I", 0)))
        kind, fields = peer.await_link(21, attrlog.ERROR)
        self.assertEqual((kind, fields[4]), (21, 0))
        self.assertIn(b"may only be read", fields)
        self.assert_unharmed()

    def test_what_is_no_hello_ends_the_connection(self):
        for said in (attrlog.hello(magic=0), attrlog.hello(protocol=9), attrlog.mount(1, "/vgw"), b"GET / HTTP/1.1\r\n\r\n" * 9):
            peer = attrlog.Peer(self.port, greets=False)
            self.addCleanup(peer.close)
            peer.send(said)
            self.assertTrue(peer.error())
        self.assert_unharmed()


class QuotaTest(serve_case.ServeCase):
    def setUp(self):
        super().setUp()
        self.db = self.server()
        self.agent_ = self.agent(self.db)

    def peer(self):
        peer = attrlog.Peer(self.socket(self.agent_))
        self.addCleanup(peer.close)
        return peer

    def test_an_identity_has_so_many_sessions_and_gets_others_when_some_end(self):
        peers = [self.peer() for _ in range(256)]
        for number, peer in enumerate(peers):
            peer.mounted(number, "/vgw/status")
        self.assertIn("has 256 sessions already", self.peer().error())
        peers[0].close()
        self.agent_.await_that(lambda: self.is_let_in(), "another one is let in")

    def is_let_in(self):
        peer = attrlog.Peer(self.socket(self.agent_))
        try:
            peer.mounted(1, "/vgw/status")
            return True
        except (PermissionError, TypeError, OSError):
            return False
        finally:
            peer.close()

    def test_mounts_are_counted_over_all_sessions_of_an_identity(self):
        first, second = self.peer(), self.peer()
        for number in range(1000):
            first.mounted(number, "/vgw/config")
        for number in range(24):
            second.mounted(number, "/vgw/config")
        with self.assertRaisesRegex(PermissionError, "has 1024 mounts already"):
            second.mounted(99, "/vgw/config")
        first.close()
        self.agent_.await_that(lambda: self.is_mounted(second), "there is room again")

    def is_mounted(self, peer):
        self.number = getattr(self, "number", 1000) + 1
        try:
            peer.mounted(self.number, "/vgw/config")
            return True
        except PermissionError:
            return False

    def test_half_sent_texts_are_counted_over_all_sessions_of_an_identity(self):
        # Each alone is within the limit of 64 MiB.
        peers = [self.peer() for _ in range(3)]
        row = "/vgw/ucastMacsLocal"
        errors = []
        for peer in peers:
            peer.mounted(1, row, writable=True)
        writer = self.client(self.agent_, row + ":w")
        writer.await_told("synced")
        writer.ask("newmac", "ucastMacsLocal", "mine", "00:00:5e:00:53:01")
        chunk = b"x" * 32000
        for peer in peers:
            entity = self.row_id(peer)
            sent = attrlog.frame(attrlog.RECORD | 0x80, entity, 390, chunk)
            try:
                for _ in range(1000):
                    peer.send(sent)
            except OSError:
                pass
            errors.append(peer)
        self.assertTrue(any("over 67108864 bytes" in (peer.error(2) or "") for peer in errors[2:]))
        self.client(self.agent_, "/vgw/status").await_told("synced")

    def row_id(self, peer):
        """The id under which the row of the directory was announced."""
        while (got := peer.next()) is not None:
            if got.kind == attrlog.RECORD and got.attribute == 258 and b"UcastMacsLocal" in got.payload:
                key = struct.unpack(">I", got.payload[:4])[0]
                return struct.unpack(">Q", got.payload[5 + key : 13 + key])[0]
        raise AssertionError("the row was not announced")


if __name__ == "__main__":
    serve_case.main()
