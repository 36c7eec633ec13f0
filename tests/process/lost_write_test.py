"""What peers write is in the database once, whatever becomes of the connection and whoever else writes there."""
import time

import serve_case
import write_case
from support.meddler import Meddler
from write_case import MAC, MULTICAST, ROWS, UNICAST, VTEP

OLD_WORDS = "Parsing ovsdb operation 2 of 2 failed: Member 'uuid' is present but not allowed here."


def is_insertion(operations):
    return any(one["op"] == "insert" and one["table"] == "Ucast_Macs_Local" for one in operations)


def old_server(operations):
    """What a server answers that can't be told a row's UUID."""
    if any("uuid" in one for one in operations):
        return [None] * (len(operations) - 1) + [{"error": "syntax error", "details": OLD_WORDS}]
    return None


class LostWriteTest(write_case.WriteCase):
    def remote(self):
        """The agent's way to the database."""
        self.proxy = Meddler(self.directory / "between.sock", self.db.directory / "db.sock")
        self.addCleanup(self.proxy.close)
        return self.proxy

    def rows(self, table):
        return self.db.vtep_ctl("--bare", "--columns=_uuid", "list", table).split()

    def await_one_row(self, writer):
        """Until there is but one, under its UUID, and the agent has told that it was written; and a while beyond."""
        self.reader.await_value("1", "get", "/vgw/database", "written")
        time.sleep(0.3)
        self.assertEqual(len(self.rows("Ucast_Macs_Local")), 1)
        writer.await_that(lambda: self.names(writer, UNICAST) == self.rows("Ucast_Macs_Local"), "one row")
        self.assertEqual(self.reader.ask("get", "/vgw/database", "refused"), "0")
        self.await_rows(self.reader, self.db.read())

    def lose_the_answer(self, writer, meanwhile=lambda: None):
        """The server makes the row, and what it says of that never arrives."""
        red = self.uuid("Logical_Switch", "red")
        self.proxy.gate.clear()
        self.make_mac(writer, switch_uuid=red)
        self.reader.await_that(lambda: self.rows("Ucast_Macs_Local"), "the row is in the database")
        meanwhile()
        self.proxy.cut()
        self.proxy.gate.set()

    def test_an_address_of_which_the_answer_was_lost_is_made_once(self):
        writer = self.writer(UNICAST)
        self.lose_the_answer(writer)
        self.await_one_row(writer)

    def test_an_address_is_made_once_where_the_server_can_not_be_told_its_uuid(self):
        self.proxy.meddle = old_server
        writer = self.writer(UNICAST)
        self.lose_the_answer(writer)
        self.await_one_row(writer)

    def test_an_address_that_is_made_late_and_again_is_made_once(self):
        # A locator that both would make lets but one of them through anyway.
        self.db.vtep_ctl("add-ucast-remote", "blue", "00:00:5e:00:53:02", VTEP)
        self.reader.await_that(lambda: self.reader.ask("list", ROWS, "physicalLocatorRaw"), "the locator is here")
        writer = self.writer(UNICAST)
        red = self.uuid("Logical_Switch", "red")

        def hold(operations):
            if not is_insertion(operations):
                return None
            return "cut" if self.proxy.held else "hold"

        self.proxy.meddle = hold
        self.make_mac(writer, switch_uuid=red)
        self.reader.await_that(lambda: self.proxy.held, "the first insertion is on its way")
        self.proxy.meddle = None
        self.proxy.cut()
        self.reader.await_that(lambda: self.rows("Ucast_Macs_Local"), "the second one is carried out")
        self.proxy.carry_out(self.proxy.held[0])
        self.await_one_row(writer)

    def test_an_address_that_is_made_between_the_copy_and_the_repetition_is_made_once(self):
        writer = self.writer(UNICAST)
        red = self.uuid("Logical_Switch", "red")

        def first(operations):
            if not is_insertion(operations):
                return None
            if not self.proxy.held:
                return "hold"
            self.proxy.carry_out(self.proxy.held[0])
            return None

        self.proxy.meddle = first
        self.make_mac(writer, switch_uuid=red)
        self.reader.await_that(lambda: self.proxy.held, "the first insertion is on its way")
        self.proxy.cut()
        self.await_one_row(writer)

    def test_what_of_an_address_was_changed_while_its_answer_was_lost_is_told(self):
        writer = self.writer(UNICAST)
        self.lose_the_answer(writer, lambda: writer.ask("set", f"{UNICAST}/mine", "vtepIp", "'192.0.2.7'"))
        self.await_refused(f"{UNICAST}/mine", "it was changed while it was being written")
        self.assertEqual(len(self.rows("Ucast_Macs_Local")), 1)
        self.await_local("red", f"{MAC} -> vxlan_over_ipv4/{VTEP}")

    def await_gone(self, writer):
        """Until the row that was made is gone everywhere, and both its making and its end are told as written."""
        self.reader.await_that(lambda: self.rows("Ucast_Macs_Local") == [], "the row goes from the database")
        self.reader.await_value("2", "get", "/vgw/database", "written")
        self.assertEqual(self.reader.ask("get", "/vgw/database", "refused"), "0")
        writer.await_that(lambda: self.names(writer, UNICAST) == [], "the row goes from the tree")

    def test_an_address_that_is_taken_back_while_its_answer_was_lost_goes_from_the_database(self):
        writer = self.writer(UNICAST)
        self.lose_the_answer(writer, lambda: writer.ask("del", UNICAST, "entry", "'mine'"))
        self.await_gone(writer)

    def test_an_address_that_is_taken_back_goes_where_the_server_can_not_be_told_its_uuid(self):
        self.proxy.meddle = old_server
        writer = self.writer(UNICAST)
        self.lose_the_answer(writer, lambda: writer.ask("del", UNICAST, "entry", "'mine'"))
        self.await_gone(writer)

    def held_insertion(self, writer):
        """An insertion that the server does not hear of yet; its row has been taken out since."""
        red = self.uuid("Logical_Switch", "red")
        self.proxy.meddle = lambda operations: "hold" if is_insertion(operations) else None
        self.make_mac(writer, switch_uuid=red)
        self.reader.await_that(lambda: self.proxy.held, "the insertion is on its way")
        writer.ask("del", UNICAST, "entry", "'mine'")
        self.reader.await_that(lambda: self.names(self.reader, UNICAST) == [], "it is taken out")
        return self.proxy.held[0]

    def test_an_address_that_is_taken_out_while_it_is_being_made_goes_from_the_database(self):
        writer = self.writer(UNICAST)
        insertion = self.held_insertion(writer)
        result = self.proxy.carry_out(insertion)
        self.assertEqual(len(self.rows("Ucast_Macs_Local")), 1)
        self.proxy.answer(insertion, result)
        self.await_gone(writer)

    def test_an_address_that_is_taken_out_and_answered_for_before_it_is_seen_goes_from_the_database(self):
        writer = self.writer(UNICAST)
        insertion = self.held_insertion(writer)
        self.proxy.answer(insertion, [{}] * (len(insertion["params"]) - 1))
        self.reader.await_value("1", "get", "/vgw/database", "written")
        time.sleep(0.2)
        self.proxy.carry_out(insertion)
        self.await_gone(writer)

    def test_addresses_that_come_and_go_at_once_leave_nothing_behind(self):
        writer = self.writer(UNICAST)
        red = self.uuid("Logical_Switch", "red")

        def is_empty():
            for name in self.names(writer, UNICAST):
                writer.ask("del", UNICAST, "entry", f"'{name}'")
            return self.rows("Ucast_Macs_Local") == [] and self.names(self.reader, UNICAST) == []

        for n in range(60):
            self.make_mac(writer, f"brief-{n}", f"00:00:5e:00:53:{n:02x}", switch_uuid=red)
            # Before it is sent, while it is under way, and when it is there under its UUID.
            time.sleep(n % 6 * 0.006)
            writer.ask("del", UNICAST, "entry", f"'brief-{n}'")
        self.reader.await_that(is_empty, "all are gone")
        self.assertEqual(self.reader.ask("get", "/vgw/database", "refused"), "0")
        # Nothing is on its way any more.
        time.sleep(0.3)
        self.assertTrue(is_empty())

    def test_a_removal_that_was_carried_out_and_lost_is_told_as_written(self):
        writer = self.writer(UNICAST)
        self.make_mac(writer)
        self.await_one_row(writer)
        self.proxy.meddle = lambda operations: "hold" if operations[0]["op"] == "delete" else None
        writer.ask("del", UNICAST, "entry", f"'{self.names(writer, UNICAST)[0]}'")
        self.reader.await_that(lambda: self.proxy.held, "the removal is on its way")
        self.proxy.meddle = None
        self.proxy.gate.clear()
        self.proxy.carry_out(self.proxy.held[0])
        self.proxy.cut()
        self.proxy.gate.set()
        self.await_gone(writer)

    def test_a_write_that_costs_the_connection_each_time_is_given_up_and_told_once(self):
        port, device = self.port(), self.switch()
        sent = []

        def poison(operations):
            if "poison" not in str(operations):
                return None
            sent.append(operations)
            return "cut"

        self.proxy.meddle = poison
        writer = self.writer(port, device, UNICAST)
        red = self.uuid("Logical_Switch", "red")
        # All of them are under way together the first time, and lost.
        self.db.kill()
        self.reader.await_value("false", "get", "/vgw/database", "inStep")
        writer.ask("set", port, "desc", "'poison'")
        writer.ask("set", device, "desc", "'harmless'")
        for n in range(20):
            self.make_mac(writer, f"new-{n}", f"00:00:5e:00:53:{n:02x}", switch_uuid=red)
        self.db.start()
        self.await_refused(port, "the connection was lost each of the 5 times that it was sent alone")
        self.reader.await_that(lambda: self.column("Physical_Switch", "tor", "description") == "harmless", "the other write")
        self.reader.await_value("21", "get", "/vgw/database", "written")
        self.assertEqual(len(self.rows("Ucast_Macs_Local")), 20)
        # The first time it was not alone.
        self.assertEqual(len(sent), 6)
        self.reader.await_value("1", "get", "/vgw/database", "refused")
        writer.ask("set", port, "desc", "'wholesome'")
        self.reader.await_that(lambda: self.column("Physical_Port", "p1", "description") == "wholesome", "a later write")
        self.assertEqual(self.reader.ask("get", "/vgw/database", "refused"), "1")
        self.assertEqual(len(sent), 6)

    def test_a_write_that_is_under_way_whenever_the_side_is_switched_off_is_not_given_up(self):
        port = self.port()
        writer = self.writer(port, "/vgw/cliConfig")
        self.proxy.meddle = lambda operations: "hold" if "patient" in str(operations) else None
        writer.ask("set", port, "desc", "'patient'")
        for times in range(1, 9):
            self.reader.await_that(lambda: len(self.proxy.held) == times, f"it is under way, {times}")
            writer.ask("set", "/vgw/cliConfig", "enableAgent", "false")
            self.reader.await_value("false", "get", "/vgw/database", "inStep")
            self.reader.await_value("false", "get", "/vgw/status", "running")
            writer.ask("set", "/vgw/cliConfig", "enableAgent", "true")
        self.proxy.meddle = None
        self.proxy.cut()
        self.reader.await_that(lambda: self.column("Physical_Port", "p1", "description") == "patient", "it is written")
        self.assertEqual(self.reader.ask("get", "/vgw/database", "refused"), "0")

    def test_keys_that_two_peers_and_a_client_of_the_database_write_at_once_all_stay(self):
        port = self.port()
        writers = [self.writer(port) for _ in range(2)]
        mine, others = [], []
        with self.db.client() as client:
            for n in range(150):
                mine.append(f"k{n}")
                self.assertEqual(writers[n % 2].ask("set", port, "fault", f"'k{n}'", "true"), "ok")
                if n % 3 == 0:
                    others.append(f"d{n}")
                    self.mutate(client, "Physical_Port", "port_fault_status", "insert", f"d{n}")
                time.sleep((0, 0.002, 0.019, 0.021, 0.023)[n % 5])
        every = sorted(mine + others)

        def missing():
            stored = self.members("Physical_Port", "p1", "port_fault_status")
            return [key for key in every if key not in stored]

        self.reader.await_that(lambda: not missing(), "all faults are in the database")
        self.assertEqual(self.reader.ask("get", "/vgw/database", "refused"), "0")
        self.await_rows(self.reader, self.db.read())

    def test_addresses_that_a_client_of_the_database_adds_unseen_stay(self):
        device = self.switch()
        writer = self.writer(device)
        self.proxy.gate.clear()
        with self.db.client() as client:
            for address in ("192.0.2.77", "2001:db8::1"):
                self.mutate(client, "Physical_Switch", "management_ips", "insert", address)
        writer.ask("set", device, "mgmtIp", "'192.0.2.9'", "true")
        self.reader.await_that(lambda: "192.0.2.9" in self.members("Physical_Switch", "tor", "management_ips"), "ours")
        self.proxy.gate.set()
        self.assertEqual(
            self.members("Physical_Switch", "tor", "management_ips"), {"192.0.2.9", "192.0.2.77", "2001:db8::1"}
        )
        # An address that the tree does not hold keeps nobody from writing the others.
        self.reader.await_that(lambda: "mgmtIp" in self.reader.ask("list", device, "invalidAttrib"), "all of it is seen")
        writer.ask("del", device, "mgmtIp", "'192.0.2.77'")
        self.reader.await_that(
            lambda: self.members("Physical_Switch", "tor", "management_ips") == {"192.0.2.9", "2001:db8::1"}, "it is gone"
        )
        self.assertEqual(self.reader.ask("get", "/vgw/database", "refused"), "0")

    def test_vteps_that_a_client_of_the_database_adds_unseen_stay(self):
        self.db.vtep_ctl("add-mcast-local", "red", "unknown-dst", VTEP)
        self.reader.await_that(lambda: self.names(self.reader, MULTICAST) == self.rows("Mcast_Macs_Local"), "the row")
        (row,) = self.rows("Mcast_Macs_Local")
        writer = self.writer(MULTICAST)
        self.proxy.gate.clear()
        self.db.vtep_ctl("add-mcast-local", "red", "unknown-dst", "192.0.2.2")
        writer.ask("set", f"{MULTICAST}/{row}", "vtepIp", "'192.0.2.3'", "true")
        time.sleep(0.1)
        self.proxy.gate.set()
        every = [f"unknown-dst -> vxlan_over_ipv4/{address}" for address in (VTEP, "192.0.2.2", "192.0.2.3")]
        self.await_local("red", *every)
        writer.ask("del", f"{MULTICAST}/{row}", "vtepIp", "'192.0.2.2'")
        self.await_local("red", every[0], every[2])
        self.assertEqual(self.reader.ask("get", "/vgw/database", "refused"), "0")
        self.await_rows(self.reader, self.db.read())

    def test_a_multicast_row_that_another_changes_again_and_again_is_undone_with_that_reason(self):
        self.db.vtep_ctl("add-mcast-local", "red", "unknown-dst", VTEP)
        self.reader.await_that(lambda: self.names(self.reader, MULTICAST) == self.rows("Mcast_Macs_Local"), "the row")
        row = f"{MULTICAST}/{self.rows('Mcast_Macs_Local')[0]}"
        writer = self.writer(MULTICAST)
        tried = []

        def outrun(operations):
            tried.append(operations)
            return [{}, {}, {"error": "timed out", "details": '"where" clause test failed'}, None, None]

        self.proxy.meddle = outrun
        writer.ask("set", row, "vtepIp", "'192.0.2.8'", "true")
        self.await_refused(row, "another keeps changing the row")
        self.assertGreater(len(tried), 10)
        for client in (writer, self.reader):
            client.await_value(f"'{VTEP}'", "list", row, "vtepIp")

    def test_a_row_that_is_gone_unseen_is_undone_with_that_reason(self):
        port = self.port()
        writer = self.writer(port)
        self.proxy.gate.clear()
        self.db.vtep_ctl("del-port", "tor", "p1")
        writer.ask("set", port, "desc", "'late'")
        time.sleep(0.2)
        self.proxy.gate.set()
        self.await_refused(port, "the row is gone from the database")
        self.await_rows(self.reader, self.db.read())

    def test_what_is_taken_out_before_the_database_has_it_is_not_there(self):
        port = self.port()
        writer = self.writer(port)
        self.proxy.meddle = lambda operations: "hold" if not self.proxy.held else None
        writer.ask("set", port, "fault", "'brief'", "true")
        writer.ask("set", port, "vlanStat", "7", "'new'")
        self.reader.await_that(lambda: self.proxy.held, "the fault is on its way")
        # What the mirror makes of the row then has no such members.
        self.db.vtep_ctl("set", "Physical_Port", "p1", "description=other")
        self.reader.await_value("'other'", "get", port, "desc")
        self.assertEqual(writer.ask("get", port, "fault", "'brief'"), "true")
        self.assertEqual(writer.ask("get", port, "vlanStat", "7"), "'new'")
        writer.ask("del", port, "fault", "'brief'")
        writer.ask("del", port, "vlanStat", "7")
        self.reader.await_value("", "list", port, "fault")
        self.proxy.carry_out(self.proxy.held[0])
        self.proxy.cut()
        self.reader.await_value("1", "get", "/vgw/database", "written")
        self.assertEqual(self.members("Physical_Port", "p1", "port_fault_status"), set())
        self.await_rows(self.reader, self.db.read())

    def test_a_member_that_another_takes_out_at_once_is_not_left_in_the_tree(self):
        port = self.port()
        writer = self.writer(port)
        self.proxy.meddle = lambda operations: "hold" if not self.proxy.held else None
        writer.ask("set", port, "fault", "'brief'", "true")
        self.reader.await_that(lambda: self.proxy.held, "the fault is on its way")
        self.proxy.carry_out(self.proxy.held[0])
        with self.db.client() as client:
            self.mutate(client, "Physical_Port", "port_fault_status", "delete", "brief")
        message = self.proxy.held[0]
        self.proxy.answer(message, [{} for _ in message["params"][1:]])
        self.reader.await_value("1", "get", "/vgw/database", "written")
        for client in (writer, self.reader):
            client.await_value("", "list", port, "fault")
        self.await_rows(self.reader, self.db.read())


if __name__ == "__main__":
    serve_case.main()
