"""What the tests of writing share: a writer and a reader of an agent beside a database with a switch, a port and two networks."""
import serve_case

MAC = "00:00:5e:00:53:01"
VTEP = "192.0.2.1"
UNICAST = "/vgw/ucastMacsLocal"
MULTICAST = "/vgw/mcastMacsLocal"
ROWS = "/vgw/status/ovsdb"


class WriteCase(serve_case.ServeCase):
    def setUp(self):
        super().setUp()
        self.db = self.server()
        self.db.vtep_ctl("add-ps", "tor", "--", "add-port", "tor", "p1", "--", "add-ls", "red", "--", "add-ls", "blue")
        self.agent_ = self.agent(self.remote())
        self.reader = self.client(self.agent_, "/vgw")
        self.reader.await_value("true", "get", "/vgw/database", "inStep")

    def remote(self):
        """What the agent is told of the database: where it is."""
        return self.db

    def writer(self, *paths):
        client = self.client(self.agent_, *(path + ":w" for path in paths))
        client.await_told("synced", len(paths))
        return client

    def uuid(self, table, name):
        return self.db.vtep_ctl("--bare", "--columns=_uuid", "find", table, f"name={name}").strip()

    def column(self, table, record, column):
        return self.db.vtep_ctl("get", table, record, column).strip()

    def members(self, table, record, column):
        return set(self.column(table, record, column).strip("[]").replace('"', "").split(", ")) - {""}

    def mutate(self, client, table, column, mutator, member):
        """What another client of the database does to a set of all rows."""
        mutations = [[column, mutator, ["set", [member]]]]
        client.transact([{"op": "mutate", "table": table, "where": [], "mutations": mutations}])

    def port(self):
        return f"{ROWS}/physicalPort/{self.uuid('Physical_Port', 'p1')}"

    def switch(self):
        return f"{ROWS}/physicalSwitchRaw/{self.uuid('Physical_Switch', 'tor')}"

    def names(self, client, path):
        return [name.strip("'") for name in client.ask("list", path, "entry").split()]

    def await_refused(self, path, *reason):
        self.reader.await_that(
            lambda: all(word in self.reader.ask("get", "/vgw/database", "refusedReason") for word in reason)
            and self.reader.ask("get", "/vgw/database", "refusedPath") == f"'{path}'",
            f"{path} is refused because of {reason}",
        )

    def await_local(self, switch, *lines):
        """Until vtep-ctl lists those local addresses of the switch."""

        def listed():
            listing = self.db.vtep_ctl("list-local-macs", switch)
            return sorted(line.strip() for line in listing.splitlines() if "->" in line)

        self.reader.await_that(lambda: listed() == sorted(lines), f"{lines} of {switch}; {listed()}")

    def statistics(self):
        return len(self.reader.ask("list", ROWS, "logicalBindingStats").split())

    def make_mac(self, writer, name="mine", mac=MAC, switch="red", vtep=VTEP, switch_uuid=None):
        self.assertEqual(writer.ask("newmac", "ucastMacsLocal", name, mac), "ok")
        uuid = switch_uuid or self.uuid("Logical_Switch", switch)
        writer.ask("set", f"{UNICAST}/{name}", "logicalSwitch", f"'{uuid}'")
        writer.ask("set", f"{UNICAST}/{name}", "vtepIp", f"'{vtep}'")
