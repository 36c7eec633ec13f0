"""A private cluster of OVSDB servers: each member's database, sockets and log are in one directory."""
import os
import re
import signal
import subprocess
import time
from pathlib import Path

from . import ovs
from .columns import Columns
from .rpc import Client, RpcError


class Member:
    """One server of a cluster: start(), kill() and start() again."""

    def __init__(self, directory, number):
        self.file = directory / f"member{number}.db"
        self.socket = directory / f"member{number}.sock"
        self.remote = f"unix:{self.socket}"
        self.address = f"unix:{directory / f'member{number}.raft'}"
        self._control = directory / f"member{number}.ctl"
        self._log = directory / f"member{number}.log"
        self._environment = dict(os.environ, OVS_RUNDIR=str(directory), OVS_LOGDIR=str(directory))
        self._process = None
        self._paused = False

    def start(self):
        self.socket.unlink(missing_ok=True)
        command = [
            ovs.program("ovsdb-server"),
            "--no-chdir",
            "-vconsole:off",
            f"--log-file={self._log}",
            f"--unixctl={self._control}",
            f"--remote=p{self.remote}",
            str(self.file),
        ]
        self._process = subprocess.Popen(command, stdin=subprocess.DEVNULL, env=self._environment)
        return self

    def is_running(self):
        return self._process is not None and self._process.poll() is None and not self._paused

    def kill(self):
        """As a crash would; safe to repeat."""
        self.resume()
        if self.is_running():
            self._process.send_signal(signal.SIGKILL)
        if self._process is not None:
            self._process.wait(timeout=20)
        self._process = None

    def pause(self):
        """Says nothing any more, and is asked nothing."""
        self._process.send_signal(signal.SIGSTOP)
        self._paused = True

    def resume(self):
        """Safe to repeat."""
        if self._paused:
            self._process.send_signal(signal.SIGCONT)
        self._paused = False

    def status(self):
        """What it says of the cluster; empty while it says nothing."""
        command = [ovs.program("ovs-appctl"), "-t", self._control, "cluster/status", "hardware_vtep"]
        done = subprocess.run(command, capture_output=True, text=True, env=self._environment, timeout=60)
        return done.stdout

    def leads(self):
        return self.is_running() and re.search(r"^Role: leader$", self.status(), re.MULTILINE) is not None

    def follows(self):
        """It has joined, and knows who leads."""
        return self.is_running() and re.search(r"^Leader: (?!unknown)", self.status(), re.MULTILINE) is not None


class Cluster:
    """Three members on hardware_vtep; started by start(), gone after stop()."""

    def __init__(self, directory, size=3):
        self.directory = Path(directory)
        self.directory.mkdir(parents=True, exist_ok=True)
        self.members = [Member(self.directory, number) for number in range(1, size + 1)]
        self.columns = Columns(ovs.packaged_schema())

    def start(self):
        """Returns when all have joined."""
        first, *others = self.members
        schema = ovs.prefix() / "usr/share/openvswitch/vtep.ovsschema"
        self._tool("create-cluster", first.file, schema, first.address)
        first.start()
        for member in others:
            self._tool("join-cluster", member.file, "hardware_vtep", member.address, first.address)
            member.start()
        self.await_that(lambda: all(member.follows() for member in self.members), "all have joined")
        return self

    def leader(self, timeout=20):
        """The member that leads, once there is one."""
        found = []

        def is_there():
            found[:] = [member for member in self.members if member.leads()]
            return len(found) == 1

        self.await_that(is_there, "one member leads", timeout)
        return found[0]

    def rejoin(self, member):
        """Starts a member that was killed; returns when it follows."""
        member.start()
        self.await_that(member.follows, "the member is back")

    def client(self):
        """At the leader."""
        return Client(self.leader().socket)

    def transact(self, operations):
        """Committed, whichever member leads by now. An answer that was lost with a leader leaves it open."""
        with self.client() as client:
            client.transact(operations)

    def read(self):
        with self.client() as client:
            return self.columns.read(client)

    def stop(self):
        for member in self.members:
            member.kill()

    def await_that(self, holds, what, timeout=20):
        deadline = time.monotonic() + timeout
        while not holds():
            if time.monotonic() > deadline:
                raise RpcError(f"not within {timeout} s: {what}")
            time.sleep(0.05)

    def _tool(self, *words):
        command = [ovs.program("ovsdb-tool"), *map(str, words)]
        subprocess.run(command, check=True, capture_output=True, env=dict(os.environ, OVS_RUNDIR=str(self.directory)))
