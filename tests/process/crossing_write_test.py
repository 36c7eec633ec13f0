"""What becomes of writes that cross what others do to the same row, in the database or in the tree."""
import serve_case
import write_case
from lost_write_test import old_server
from support.agent import Agent
from support.meddler import Meddler
from write_case import MAC, MULTICAST, ROWS, UNICAST, VTEP

OTHER_MAC = "00:00:5e:00:53:77"


class CrossingWriteTest(write_case.WriteCase):
    def remote(self):
        """The agent's way to the database."""
        self.proxy = Meddler(self.directory / "between.sock", self.db.directory / "db.sock")
        self.addCleanup(self.proxy.close)
        return self.proxy

    def agent(self, server, *options, name="agent"):
        agent = Agent(self.directory / name, server.remote, *options, watch=True)
        self.addCleanup(agent.stop)
        return agent.start()

    def heard_of(self, row, attribute):
        return [line.split(f".{attribute}")[1] for line in self.agent_.heard() if f" {row}.{attribute}" in line]

    def rows(self, table):
        return self.db.vtep_ctl("--bare", "--columns=_uuid", "list", table).split()

    def unicast_row(self):
        """A writer, and the name of a row that the database has."""
        writer = self.writer(UNICAST)
        self.make_mac(writer)
        writer.await_that(lambda: [len(name) for name in self.names(writer, UNICAST)] == [36], "it stands under its UUID")
        return writer, self.names(writer, UNICAST)[0]

    def multicast_row(self):
        self.db.vtep_ctl("add-mcast-local", "red", "unknown-dst", VTEP)
        self.reader.await_that(lambda: self.names(self.reader, MULTICAST), "the row")
        return self.writer(MULTICAST), self.names(self.reader, MULTICAST)[0]

    def hold(self, writer, *write):
        """Writes, and keeps that transaction from the server."""
        self.proxy.meddle = lambda operations: "hold" if not self.proxy.held else None
        self.assertEqual(writer.ask(*write), "ok")
        self.reader.await_that(lambda: self.proxy.held, "the write is on its way")

    def let_go(self):
        """Has the server carry it out, and tell that as servers do, the change before the answer."""
        message = self.proxy.held[0]
        result = self.proxy.carry_out(message)
        self.db.vtep_ctl("set", "Physical_Port", "p1", "description=changed")
        self.reader.await_value("'changed'", "get", self.port(), "desc")
        self.proxy.answer(message, result)

    def assert_refused(self, count):
        self.assertEqual(self.reader.ask("get", "/vgw/database", "refused"), str(count))

    def test_what_another_makes_of_a_value_before_its_writer_hears_is_what_stays(self):
        port = self.port()
        writer = self.writer(port)
        self.hold(writer, "set", port, "desc", "'mine'")
        message = self.proxy.held[0]
        result = self.proxy.carry_out(message)
        self.db.vtep_ctl("set", "Physical_Port", "p1", "description=theirs", "port_fault_status=seen")
        self.reader.await_value("'seen'", "list", port, "fault")
        self.proxy.answer(message, result)
        self.reader.await_value("1", "get", "/vgw/database", "written")
        for client in (writer, self.reader):
            client.await_value("'theirs'", "get", port, "desc")
        self.await_rows(self.reader, self.db.read())

    def test_what_another_makes_of_an_address_before_its_writer_hears_is_what_stays(self):
        writer, row = self.unicast_row()
        red, blue = (self.uuid("Logical_Switch", name) for name in ("red", "blue"))
        self.hold(writer, "set", f"{UNICAST}/{row}", "logicalSwitch", f"'{blue}'")
        message = self.proxy.held[0]
        result = self.proxy.carry_out(message)
        self.db.vtep_ctl("set", "Ucast_Macs_Local", row, f"logical_switch={red}")
        self.proxy.answer(message, result)
        self.reader.await_value("2", "get", "/vgw/database", "written")
        for client in (writer, self.reader):
            client.await_value(f"'{red}'", "get", f"{UNICAST}/{row}", "logicalSwitch")

    def test_an_address_that_is_removed_while_a_write_of_it_is_taken_goes(self):
        writer, row = self.multicast_row()
        self.hold(writer, "set", f"{MULTICAST}/{row}", "vtepIp", "'192.0.2.8'", "true")
        writer.ask("del", MULTICAST, "entry", f"'{row}'")
        self.reader.await_that(lambda: self.names(self.reader, MULTICAST) == [], "it is removed in the tree")
        self.let_go()
        self.reader.await_value("2", "get", "/vgw/database", "written")
        self.assertEqual(self.rows("Mcast_Macs_Local"), [])
        self.assert_refused(0)
        self.await_rows(self.reader, self.db.read())

    def test_an_address_that_is_removed_while_a_write_of_it_is_refused_goes(self):
        writer, row = self.unicast_row()
        self.hold(writer, "set", f"{UNICAST}/{row}", "logicalSwitch", "'00000000-1111-2222-3333-444444444444'")
        writer.ask("del", UNICAST, "entry", f"'{row}'")
        self.reader.await_that(lambda: self.names(self.reader, UNICAST) == [], "it is removed in the tree")
        self.let_go()
        self.await_refused(f"{UNICAST}/{row}", "referential integrity violation")
        self.reader.await_that(lambda: self.rows("Ucast_Macs_Local") == [], "it is removed in the database")
        self.assert_refused(1)
        self.await_rows(self.reader, self.db.read())

    def test_an_address_that_waits_to_be_removed_does_not_come_back_with_another_mac(self):
        writer, row = self.unicast_row()
        self.hold(writer, "set", f"{UNICAST}/{row}", "vtepIp", "'192.0.2.8'")
        writer.ask("del", UNICAST, "entry", f"'{row}'")
        self.reader.await_that(lambda: self.names(self.reader, UNICAST) == [], "it is removed in the tree")
        self.db.vtep_ctl("set", "Ucast_Macs_Local", row, f'MAC="{OTHER_MAC}"', "--", "set", "Physical_Port", "p1", "description=seen")
        self.reader.await_value("'seen'", "get", self.port(), "desc")
        self.assertEqual(self.names(self.reader, UNICAST), [])
        self.let_go()
        self.reader.await_value("3", "get", "/vgw/database", "written")
        self.assertEqual(self.rows("Ucast_Macs_Local"), [])
        self.assert_refused(0)

    def test_an_address_that_nobody_removed_stays_in_the_database_where_the_tree_can_not_hold_it(self):
        writer, row = self.unicast_row()
        self.hold(writer, "set", f"{UNICAST}/{row}", "vtepIp", "'192.0.2.8'")
        writer.ask("set", f"{UNICAST}/{row}", "vtepIp", "'192.0.2.9'")
        self.db.vtep_ctl("set", "Ucast_Macs_Local", row, "MAC=odd")
        self.reader.await_that(lambda: self.names(self.reader, UNICAST) == [], "the tree has no such row")
        self.let_go()
        self.reader.await_value("3", "get", "/vgw/database", "written")
        self.await_local("red", "odd -> vxlan_over_ipv4/192.0.2.9")
        self.assertEqual(self.rows("Ucast_Macs_Local"), [row])

    def test_a_write_to_an_address_that_goes_before_it_is_sent_is_undone_with_that_reason(self):
        writer, row = self.unicast_row()
        switch = self.writer("/vgw/cliConfig")
        switch.ask("set", "/vgw/cliConfig", "enableOvsdb", "false")
        self.reader.await_value("false", "get", "/vgw/database", "inStep")
        writer.ask("set", f"{UNICAST}/{row}", "vtepIp", "'192.0.2.8'")
        self.reader.await_value("'192.0.2.8'", "get", f"{UNICAST}/{row}", "vtepIp")
        self.db.vtep_ctl("--", "destroy", "Ucast_Macs_Local", row)
        switch.ask("set", "/vgw/cliConfig", "enableOvsdb", "true")
        self.await_refused(f"{UNICAST}/{row}", "the row is gone from the database")
        self.assertEqual(self.names(self.reader, UNICAST), [])

    def test_what_may_not_be_written_to_an_address_is_undone_where_it_was_removed_at_once(self):
        writer, row = self.unicast_row()
        writer.ask_all([f"set {UNICAST}/{row} invalidAttrib 'vtepIp' true", f"del {UNICAST} entry '{row}'"])
        self.await_refused(f"{UNICAST}/{row}", "invalidAttrib may not be written")
        for client in (writer, self.reader):
            client.await_that(lambda client=client: self.names(client, UNICAST) == [row], "the row is back")
            client.await_value("", "list", f"{UNICAST}/{row}", "invalidAttrib")
        self.assertEqual(self.rows("Ucast_Macs_Local"), [row])

    def test_another_row_that_is_put_in_the_place_of_one_that_is_written_is_undone_with_that_reason(self):
        writer, row = self.unicast_row()
        self.hold(writer, "set", f"{UNICAST}/{row}", "vtepIp", "'192.0.2.8'")
        writer.ask("newmac", "ucastMacsLocal", row, OTHER_MAC)
        self.reader.await_value(f"'{OTHER_MAC}'", "get", f"{UNICAST}/{row}", "macAddr")
        self.let_go()
        self.await_refused(f"{UNICAST}/{row}", "the row is there already")
        self.await_local("red", f"{MAC} -> vxlan_over_ipv4/192.0.2.8")
        self.await_rows(self.reader, self.db.read())

    def test_a_row_under_a_uuid_that_the_database_gets_meanwhile_is_undone_with_that_reason(self):
        name = "11111111-2222-4333-8444-555555555555"
        self.db.vtep_ctl("add-ucast-remote", "blue", "00:00:5e:00:53:02", VTEP)
        writer = self.writer(UNICAST)
        writer.ask("newmac", "ucastMacsLocal", name, MAC)
        columns = {
            "MAC": OTHER_MAC,
            "logical_switch": ["uuid", self.uuid("Logical_Switch", "red")],
            "locator": ["uuid", self.rows("Physical_Locator")[0]],
            "ipaddr": "",
        }
        with self.db.client() as client:
            client.transact([{"op": "insert", "table": "Ucast_Macs_Local", "uuid": name, "row": columns}])
        self.await_refused(f"{UNICAST}/{name}", "the row is there already")
        for client in (writer, self.reader):
            client.await_value(f"'{OTHER_MAC}'", "get", f"{UNICAST}/{name}", "macAddr")
        self.await_rows(self.reader, self.db.read())

    def test_addresses_that_wait_at_a_switch_with_others_than_ipv4_never_come_and_go(self):
        device = self.switch()
        for column in ("management_ips", "tunnel_ips"):
            self.db.vtep_ctl("add", "Physical_Switch", "tor", column, '"2001:db8::1"')
        marks = lambda: sorted(self.reader.ask("list", device, "invalidAttrib").split())
        self.reader.await_that(lambda: marks() == ["'mgmtIp'", "'tunnelIp'"], "they are not whole")
        writer = self.writer(device)
        self.hold(writer, "set", device, "mgmtIp", "'192.0.2.9'", "true")
        writer.ask("set", device, "tunnelIp", "'192.0.2.8'", "true")
        self.reader.await_value("'192.0.2.8'", "list", device, "tunnelIp")
        # The mirror makes the row anew.
        self.db.vtep_ctl("set", "Physical_Switch", "tor", "description=other")
        self.reader.await_value("'other'", "get", device, "desc")
        self.let_go()
        self.reader.await_value("2", "get", "/vgw/database", "written")
        self.await_rows(self.reader, self.db.read())
        self.assertEqual(self.heard_of(device, "mgmtIp"), ["[192.0.2.9] -> true"])
        self.assertEqual(self.heard_of(device, "tunnelIp"), ["[192.0.2.8] -> true"])
        self.assertEqual(sorted(self.heard_of(device, "invalidAttrib")), ["[mgmtIp] -> true", "[tunnelIp] -> true"])

    def test_a_vtep_that_is_written_as_none_leaves_nothing_in_the_tree(self):
        writer, row = self.multicast_row()
        writer.ask("set", f"{MULTICAST}/{row}", "vtepIp", "'192.0.2.8'", "false")
        self.assertEqual(len(writer.ask("list", f"{MULTICAST}/{row}", "vtepIp").split()), 2)
        for client in (writer, self.reader):
            client.await_value(f"'{VTEP}'", "list", f"{MULTICAST}/{row}", "vtepIp")

    def test_addresses_under_way_at_once_are_all_made_where_the_server_can_not_be_told_their_uuids(self):
        self.proxy.meddle = lambda operations: "hold" if old_server(operations) else None
        writer = self.writer(UNICAST)
        red = self.uuid("Logical_Switch", "red")
        for n in range(3):
            self.make_mac(writer, f"new-{n}", f"00:00:5e:00:53:{n:02x}", vtep=f"192.0.2.{n}", switch_uuid=red)
        self.reader.await_that(lambda: len(self.proxy.held) == 3, "all are on their way")
        for message in self.proxy.held[:3]:
            self.proxy.answer(message, old_server(message["params"][1:]))
        self.reader.await_value("3", "get", "/vgw/database", "written")
        self.assertEqual(len(self.rows("Ucast_Macs_Local")), 3)
        self.assert_refused(0)
        self.await_rows(self.reader, self.db.read())


if __name__ == "__main__":
    serve_case.main()
