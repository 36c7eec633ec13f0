"""A schema that lacks what every version has: the rest is followed and written, and nobody is told that the mirror is in step."""
import json
import os
import unittest.mock

import serve_case
from service_test import Manager
from support import ctl, older_schema, ovs
from support.agent import once

TABLE = "Ucast_Macs_Remote"
WITHOUT = {
    f"table {TABLE} is missing from the schema": lambda: older_schema.without_table(ovs.packaged_schema(), TABLE),
    "column Logical_Switch.description is missing from the schema": lambda: older_schema.without_column(
        ovs.packaged_schema(), "Logical_Switch", "description"
    ),
}


class SchemaTest(serve_case.ServeCase):
    def remote(self, agent):
        return f"unix:{self.socket(agent)}"

    def state(self, agent):
        """The states of the tree's entries, of the session, and what the report says."""
        tree = json.loads(ctl.read(self.remote(agent), "-f", "json", "show", "/vgw"))
        entries = {entry["path"]: entry for entry in tree["children"]["entry"]}
        status = entries["/vgw/status"]
        (session,) = status["children"]["ovsdbSessionStatus"]
        report = entries["/vgw/database"]["values"]
        state = status.get("state", "ready")
        self.assertEqual(entries["/vgw/ucastMacsRemote"].get("state", "ready"), state)
        return state, session["values"]["sessionState"], report["inStep"], report["reason"]

    def await_state(self, agent, *state):
        agent.await_that(lambda: self.state(agent) == state, f"the state is {state}, and not {self.state(agent)}")

    def switch(self, server):
        (uuid,) = server.read()["Physical_Switch"]
        return f"/vgw/status/ovsdb/physicalSwitchRaw/{uuid}"

    def test_all_that_tells_the_state_names_what_is_missing_and_the_rest_is_followed_and_written(self):
        for number, (missing, schema) in enumerate(WITHOUT.items()):
            with self.subTest(missing):
                server = self.server(schema(), f"server-{number}")
                server.vtep_ctl("add-ps", "tor-1")
                agent = self.agent(server, name=f"agent-{number}")
                agent.await_said(f"out of step: {missing}; the rest is followed by monitor_cond_since")
                self.await_state(agent, "stale", "stateDisconnected", False, missing)
                server.vtep_ctl("add-ls", "red")
                agent.await_equal(server.read())
                ctl.read(self.remote(agent), "set", self.switch(server), "desc=written")
                agent.await_that(
                    lambda: [row["description"] for row in server.read()["Physical_Switch"].values()] == ["written"],
                    "what a peer writes is in the database",
                )
                self.await_state(agent, "stale", "stateDisconnected", False, missing)
                self.assertNotIn(" in step", agent.said())
                done = once(server.remote, self.directory / f"once-{number}")
                self.assertEqual((done.returncode, done.stdout), (1, ""))
                self.assertIn(f"critical: out of step: {missing}", done.stderr)

    def test_the_service_manager_is_told(self):
        for number, (missing, schema) in enumerate(WITHOUT.items()):
            with self.subTest(missing):
                server = self.server(schema(), f"server-{number}")
                address = str(self.directory / f"notify-{number}")
                manager = Manager(address)
                self.addCleanup(manager.socket.close)
                with unittest.mock.patch.dict(os.environ, NOTIFY_SOCKET=address):
                    self.agent(server, name=f"agent-{number}")
                manager.await_told("READY=1")
                manager.await_told(f"STATUS=out of step: {missing}")
                server.convert(ovs.packaged_schema())
                manager.await_told(f"STATUS=in step with {server.remote}")

    def test_a_conversion_to_and_fro_keeps_what_has_gone_until_it_is_back(self):
        for number, (missing, schema) in enumerate(WITHOUT.items()):
            with self.subTest(missing):
                server = self.server(name=f"server-{number}")
                self.network(server, remote_macs=50)
                server.vtep_ctl("add-ls", "described", "--", "set", "Logical_Switch", "described", "description=kept")
                agent = self.agent(server, name=f"agent-{number}")
                before = server.read()
                agent.await_equal(before)
                self.await_state(agent, "ready", "stateConnected", True, "")
                server.convert(schema())
                self.await_state(agent, "stale", "stateDisconnected", False, missing)
                agent.await_equal(before)
                with server.client() as client:
                    client.transact([{"op": "insert", "table": "Logical_Switch", "row": {"name": "later"}}])
                after = server.read()
                kept = {**after, TABLE: before[TABLE]}
                for uuid, row in kept["Logical_Switch"].items():
                    row["description"] = before["Logical_Switch"].get(uuid, {}).get("description", "")
                agent.await_equal(kept)
                server.convert(ovs.packaged_schema())
                self.await_state(agent, "ready", "stateConnected", True, "")
                agent.await_equal(server.read())

    def test_what_comes_and_goes_with_versions_is_not_missed(self):
        server = self.server(older_schema.without_table(ovs.packaged_schema(), "Tunnel"))
        agent = self.agent(server)
        self.await_state(agent, "ready", "stateConnected", True, "")
        agent.await_said("in step by")
        self.assertEqual(once(server.remote, self.directory / "once").returncode, 0)


if __name__ == "__main__":
    serve_case.main()
