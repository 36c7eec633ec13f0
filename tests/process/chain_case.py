"""What the tests of the whole chain share: database, vgwd, relays, and readers at each place of it."""
import time

import serve_case
from support import ctl
from support.agent import SLOWNESS
from support.sockets import listens
from support.tree_client import TreeClient
from support.watched import Watched


class ChainCase(serve_case.ServeCase):
    def remote(self, agent):
        return f"unix:{self.socket(agent)}"

    def relay(self, agent, name="relay.sock"):
        """The socket of a `vgwctl relay` that serves the agent's tree on, until the test ends."""
        socket = self.directory / name
        relay = self.enterContext(ctl.Running(self.remote(agent), "relay", socket))
        deadline = time.monotonic() + 20 * SLOWNESS
        while not listens(socket):
            self.assertTrue(time.monotonic() < deadline and relay.is_running(), relay.told())
            time.sleep(0.01)
        return socket

    def reader_at(self, socket, *paths, **options):
        client = TreeClient(socket, *paths, **options)
        self.addCleanup(client.stop)
        return client

    def watched(self, agent):
        """A `vgwctl watch` at the agent, until the test ends."""
        return self.enterContext(Watched(self.remote(agent)))

    def describe_a_switch(self, server, text):
        """One change, which one line tells; the database behind it."""
        tables = server.read()
        switch = min(tables["Physical_Switch"])
        with server.client() as client:
            where = [["_uuid", "==", ["uuid", switch]]]
            client.transact([{"op": "update", "table": "Physical_Switch", "where": where, "row": {"description": text}}])
        tables["Physical_Switch"][switch]["description"] = text
        return tables


main = serve_case.main
schema = serve_case.process_case.schema
