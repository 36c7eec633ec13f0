"""A private OVSDB server: its database file, socket and log are in one directory of its own."""
import json
import os
import signal
import subprocess
import time
from pathlib import Path

from . import ovs
from .columns import Columns
from .rpc import Client, RpcError


class Server:
    """One standalone ovsdb-server on hardware_vtep; started by start(), gone after stop().

    It runs undetached, as a child: its end is seen by wait(), and it can be no zombie that looks alive.
    """

    def __init__(self, directory, schema=None):
        self.directory = Path(directory)
        self.directory.mkdir(parents=True, exist_ok=True)
        self.socket = self.directory / "db.sock"
        self.control = self.directory / "server.ctl"
        self.file = self.directory / "vtep.db"
        self.remote = f"unix:{self.socket}"
        self._process = None
        self.create(schema or ovs.packaged_schema())

    def create(self, schema):
        """A new, empty database file. REQUIRES: not running."""
        self.schema = schema
        self.columns = Columns(schema)
        path = self.directory / "schema.json"
        path.write_text(json.dumps(schema), encoding="utf-8")
        self.file.unlink(missing_ok=True)
        self._run("ovsdb-tool", "create", self.file, path)

    def start(self):
        """Returns when the server answers."""
        command = [
            ovs.program("ovsdb-server"),
            "--no-chdir",
            "-vconsole:off",
            f"--log-file={self.directory / 'server.log'}",
            f"--unixctl={self.control}",
            f"--remote=p{self.remote}",
            str(self.file),
        ]
        self._process = subprocess.Popen(command, stdin=subprocess.DEVNULL, env=self._environment())
        deadline = time.monotonic() + 20
        while True:
            try:
                with Client(self.socket, timeout=5) as client:
                    client.schema()
                return self
            except RpcError as error:
                if self._process.poll() is not None or time.monotonic() > deadline:
                    raise RpcError(f"{error}; the server ended with {self._process.poll()}; {self._log_end()}") from error
                time.sleep(0.01)

    def _log_end(self):
        log = self.directory / "server.log"
        return log.read_text(errors="replace")[-1000:] if log.exists() else "it wrote no log"

    def stop(self):
        """Ends the server the clean way; safe to repeat."""
        self._end(signal.SIGTERM)

    def kill(self):
        """Ends the server as a crash would: nothing is written any more, nobody is told."""
        self._end(signal.SIGKILL)
        self.socket.unlink(missing_ok=True)

    def pause(self):
        self._process.send_signal(signal.SIGSTOP)

    def resume(self):
        self._process.send_signal(signal.SIGCONT)

    def client(self):
        return Client(self.socket)

    def tell(self, *words):
        """One command over the server's control socket."""
        return self._run("ovs-appctl", "-t", self.control, *words)

    def convert(self, schema):
        """Changes the schema of the running database."""
        path = self.directory / "next.json"
        path.write_text(json.dumps(schema), encoding="utf-8")
        self._run("ovsdb-client", "convert", self.remote, path)
        self.schema = schema
        self.columns = Columns(schema)

    def vtep_ctl(self, *words):
        """The field's own client."""
        return self._run("vtep-ctl", f"--db={self.remote}", *words)

    def read(self):
        """The whole database in plain values."""
        with self.client() as client:
            return self.columns.read(client)

    def __enter__(self):
        return self.start()

    def __exit__(self, *_):
        self.stop()

    def _end(self, number):
        if self._process is None:
            return
        if self._process.poll() is None:
            self._process.send_signal(signal.SIGCONT)
            self._process.send_signal(number)
        self._process.wait(timeout=20)
        self._process = None

    def _environment(self):
        return dict(os.environ, OVS_RUNDIR=str(self.directory), OVS_LOGDIR=str(self.directory))

    def _run(self, name, *words):
        command = [ovs.program(name), *map(str, words)]
        done = subprocess.run(command, capture_output=True, text=True, env=self._environment(), timeout=60)
        if done.returncode != 0:
            raise RuntimeError(f"{name} {words}: {done.stderr}")
        return done.stdout
