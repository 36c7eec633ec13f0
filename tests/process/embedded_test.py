"""Without --ovsdb, vgwd has an OVSDB server of its own in its run directory."""
import contextlib
import os
import re
import resource
import signal
import subprocess
import unittest
from pathlib import Path
from unittest import mock

import process_case
from support import ovs
from support.agent import SLOWNESS, Agent
from support.columns import Columns
from support.rpc import Client, RpcError


class EmbeddedTest(process_case.ProcessCase):
    def setUp(self):
        super().setUp()
        programs = f"{ovs.prefix() / 'usr/sbin'}:{ovs.prefix() / 'usr/bin'}"
        self.enterContext(mock.patch.dict(os.environ, PATH=f"{programs}:{os.environ['PATH']}"))
        self.schema = str(ovs.prefix() / "usr/share/openvswitch/vtep.ovsschema")
        self.agent = Agent(self.directory / "agent", None, "--schema", self.schema)
        self.addCleanup(self.agent.stop)
        self.socket = self.agent.directory / "db.sock"

    def read(self):
        with Client(self.socket) as client:
            return Columns(client.schema()).read(client)

    def add_switch(self, name):
        command = [ovs.program("vtep-ctl"), f"--db=unix:{self.socket}", "add-ls", name]
        subprocess.run(command, check=True, timeout=60)

    def server_pid(self):
        return int(re.findall(r"ovsdb-server runs in .* process (\d+)", self.agent.said())[-1])

    def test_it_is_mirrored_and_ends_with_vgwd(self):
        self.agent.start()
        self.add_switch("red")
        self.agent.await_equal(self.read())
        self.assertEqual(self.agent.stop(), 0)
        with self.assertRaises(RpcError):
            Client(self.socket)

    def test_what_it_holds_is_there_after_the_next_start(self):
        self.agent.start()
        self.add_switch("red")
        self.agent.stop()
        self.agent.start()
        tables = self.read()
        self.assertEqual([row["name"] for row in tables["Logical_Switch"].values()], ["red"])
        self.agent.await_equal(tables)

    @unittest.skipIf(SLOWNESS > 1, "a sanitizer needs descriptors of its own")
    def test_one_that_dies_while_all_descriptors_are_taken_is_started_again(self):
        self.agent.start()
        self.agent.await_equal(self.read())
        limits = resource.prlimit(self.agent.pid(), resource.RLIMIT_NOFILE)
        resource.prlimit(self.agent.pid(), resource.RLIMIT_NOFILE, (3, limits[1]))
        first = self.server_pid()
        os.kill(first, signal.SIGKILL)
        self.agent.await_that(lambda: self.server_pid() != first or not self.agent.is_running(), "another one is started")
        resource.prlimit(self.agent.pid(), resource.RLIMIT_NOFILE, limits)
        self.agent.await_that(lambda: self.agent.said().count("in step by") == 2, "it is in step again")
        self.agent.await_equal(self.read())

    def test_one_that_dies_is_started_again(self):
        self.agent.start()
        self.add_switch("red")
        self.agent.await_equal(self.read())
        first = self.server_pid()
        os.kill(first, signal.SIGKILL)
        self.agent.await_that(lambda: self.server_pid() != first, "vgwd starts its server again")
        self.agent.await_that(self.answers, "the server answers")
        self.add_switch("blue")
        self.agent.await_equal(self.read())

    def test_a_killed_vgwd_leaves_nothing_to_clean_by_hand(self):
        self.agent.start()
        self.add_switch("red")
        self.agent.kill()
        self.agent.start()
        self.agent.await_that(self.answers, "the server answers")
        self.add_switch("blue")
        self.agent.await_equal(self.read())

    def open_files(self, pid):
        """What its descriptors stand for, but for the standard ones."""
        files = set()
        for descriptor in Path(f"/proc/{pid}/fd").iterdir():
            with contextlib.suppress(FileNotFoundError):
                files |= {os.readlink(descriptor)} if int(descriptor.name) > 2 else set()
        return files

    def test_it_inherits_neither_the_log_nor_a_connection(self):
        log = self.directory / "log"
        self.agent = Agent(self.directory / "agent", None, "--schema", self.schema, "--log-file", str(log))
        self.addCleanup(self.agent.stop)
        self.agent.start()
        for _ in range(2):
            self.agent.await_said("in step by")
            first = self.server_pid()
            ours = self.open_files(self.agent.pid())
            self.assertIn(str(log), ours)
            self.assertEqual(ours & self.open_files(first), set())
            # The next one is started by an agent with connections.
            os.kill(first, signal.SIGKILL)
            self.agent.await_that(lambda: self.server_pid() != first, "vgwd starts its server again")
            self.agent.await_that(self.answers, "the server answers")

    def test_its_program_can_be_named(self):
        with mock.patch.dict(os.environ, PATH="/usr/bin:/bin"):
            program = str(ovs.program("ovsdb-server"))
            with Agent(self.directory / "named", None, "--schema", self.schema, "--ovsdb-server", program) as agent:
                agent.await_said("in step by")

    def test_a_program_that_is_not_there_ends_vgwd_and_is_named(self):
        agent = Agent(self.directory / "missing", None, "--schema", self.schema, "--ovsdb-server", "/nonexistent/server")
        with self.assertRaisesRegex(RuntimeError, "(?s)vgwd ended with 1: .*critical: program /nonexistent/server"):
            agent.start()

    def test_a_disabled_agent_starts_none(self):
        self.agent = Agent(self.directory / "agent", None, "--schema", self.schema, "--disabled")
        self.agent.start()
        self.assertFalse(self.socket.exists())
        self.assertEqual(self.agent.stop(), 0)

    def answers(self):
        try:
            Client(self.socket).close()
            return True
        except RpcError:
            return False


if __name__ == "__main__":
    process_case.main()
