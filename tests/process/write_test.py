"""What allowed peers write in the tree goes into the database, and what may not be written is undone."""
import time

import serve_case
import write_case
from support.agent import SLOWNESS, Agent, volume
from write_case import MAC, MULTICAST, ROWS, UNICAST, VTEP


class WriteTest(write_case.WriteCase):
    def test_a_local_address_that_a_writer_makes_is_in_the_database_and_then_under_its_uuid(self):
        writer = self.writer(UNICAST)
        self.make_mac(writer)
        self.await_local("red", f"{MAC} -> vxlan_over_ipv4/{VTEP}")
        row = self.db.vtep_ctl("--bare", "--columns=_uuid", "list", "Ucast_Macs_Local").strip()
        for client in (writer, self.reader):
            client.await_that(lambda client=client: self.names(client, UNICAST) == [row], "it stands under its UUID")
        self.assertEqual(writer.ask("get", f"{UNICAST}/{row}", "vtepIp"), f"'{VTEP}'")
        self.reader.await_value("1", "get", "/vgw/database", "written")
        self.assertEqual(self.reader.ask("get", "/vgw/database", "refused"), "0")
        self.await_rows(self.reader, self.db.read())

    def test_many_addresses_at_once_all_arrive(self):
        writer = self.writer(UNICAST)
        for n in range(50):
            self.make_mac(writer, f"new-{n}", f"00:00:5e:00:53:{n:02x}", "red" if n % 2 else "blue", f"192.0.2.{1 + n % 4}")
        self.reader.await_value("50", "get", "/vgw/database", "written")
        self.await_rows(self.reader, self.db.read())
        self.reader.await_that(lambda: len(self.names(writer, UNICAST)) == 50, "only rows of the database are left")

    def test_addresses_at_once_behind_vteps_that_have_no_locator_yet_are_not_refused(self):
        red = self.uuid("Logical_Switch", "red")
        writers = [self.writer(UNICAST) for _ in range(2)]
        for n in range(60):
            self.make_mac(
                writers[n % 2], f"new-{n}", f"00:00:5e:00:53:{n:02x}", vtep=f"192.0.2.{1 + n % 3}", switch_uuid=red
            )
        self.reader.await_value("60", "get", "/vgw/database", "written")
        self.assertEqual(self.reader.ask("get", "/vgw/database", "refused"), "0")
        self.await_rows(self.reader, self.db.read())

    def test_a_local_address_is_moved_and_removed(self):
        writer = self.writer(UNICAST)
        self.make_mac(writer)
        self.await_local("red", f"{MAC} -> vxlan_over_ipv4/{VTEP}")
        writer.await_that(lambda: self.names(writer, UNICAST) not in (["mine"], []) and len(self.names(writer, UNICAST)) == 1, "one row")
        (row,) = self.names(writer, UNICAST)
        writer.ask("set", f"{UNICAST}/{row}", "vtepIp", "'192.0.2.7'")
        self.await_local("red", f"{MAC} -> vxlan_over_ipv4/192.0.2.7")
        writer.ask("set", f"{UNICAST}/{row}", "logicalSwitch", f"'{self.uuid('Logical_Switch', 'blue')}'")
        self.await_local("blue", f"{MAC} -> vxlan_over_ipv4/192.0.2.7")
        self.assertEqual(writer.ask("del", UNICAST, "entry", f"'{row}'"), "ok")
        self.await_local("blue")
        self.await_rows(self.reader, self.db.read())

    def test_a_multicast_address_has_a_set_of_locators(self):
        writer = self.writer(MULTICAST)
        writer.ask("newmac", "mcastMacsLocal", "flood", "00:00:00:00:00:00")
        writer.ask("set", f"{MULTICAST}/flood", "logicalSwitch", f"'{self.uuid('Logical_Switch', 'red')}'")
        for vtep in (VTEP, "192.0.2.2"):
            writer.ask("set", f"{MULTICAST}/flood", "vtepIp", f"'{vtep}'", "true")
        self.await_local("red", f"unknown-dst -> vxlan_over_ipv4/{VTEP}", "unknown-dst -> vxlan_over_ipv4/192.0.2.2")
        self.await_rows(self.reader, self.db.read())

    def test_an_address_without_a_switch_is_undone_after_a_while_with_the_reason(self):
        writer = self.writer(UNICAST)
        writer.ask("newmac", "ucastMacsLocal", "mine", MAC)
        self.await_refused(f"{UNICAST}/mine", "logicalSwitch is not set")
        writer.await_that(lambda: self.names(writer, UNICAST) == [], "the writer's row is gone")
        self.agent_.await_said(f"{UNICAST}/mine: what uid ", "wrote is undone: logicalSwitch is not set")

    def test_what_the_database_refuses_is_undone_with_its_reason(self):
        writer = self.writer(UNICAST)
        writer.ask("newmac", "ucastMacsLocal", "mine", MAC)
        writer.ask("set", f"{UNICAST}/mine", "logicalSwitch", "'00000000-1111-2222-3333-444444444444'")
        writer.ask("set", f"{UNICAST}/mine", "vtepIp", f"'{VTEP}'")
        self.await_refused(f"{UNICAST}/mine", "referential integrity violation")
        writer.await_that(lambda: self.names(writer, UNICAST) == [], "the writer's row is gone")
        self.await_rows(self.reader, self.db.read())

    def test_what_of_a_local_address_is_not_for_peers_is_undone(self):
        writer = self.writer(UNICAST)
        self.make_mac(writer)
        writer.await_that(lambda: [len(name) for name in self.names(writer, UNICAST)] == [36], "it stands under its UUID")
        (row,) = self.names(writer, UNICAST)
        writer.ask("set", f"{UNICAST}/{row}", "uuid", "'stolen'")
        self.await_refused(f"{UNICAST}/{row}", "uuid may not be written")
        for client in (writer, self.reader):
            client.await_value(f"'{row}'", "get", f"{UNICAST}/{row}", "uuid")

    def test_another_row_under_the_uuid_of_one_is_undone(self):
        writer = self.writer(UNICAST)
        self.make_mac(writer)
        writer.await_that(lambda: [len(name) for name in self.names(writer, UNICAST)] == [36], "it stands under its UUID")
        (row,) = self.names(writer, UNICAST)
        writer.ask("newmac", "ucastMacsLocal", row, "00:00:5e:00:53:99")
        self.await_refused(f"{UNICAST}/{row}", "the row is there already")
        for client in (writer, self.reader):
            client.await_value(f"'{MAC}'", "get", f"{UNICAST}/{row}", "macAddr")
            client.await_value(f"'{VTEP}'", "get", f"{UNICAST}/{row}", "vtepIp")
        self.await_rows(self.reader, self.db.read())
        self.await_local("red", f"{MAC} -> vxlan_over_ipv4/{VTEP}")

    def test_an_entry_under_another_spelling_of_a_rows_uuid_is_not_that_row(self):
        writer = self.writer(UNICAST)
        self.make_mac(writer)
        writer.await_that(lambda: [len(name) for name in self.names(writer, UNICAST)] == [36], "it stands under its UUID")
        (row,) = self.names(writer, UNICAST)
        spelled = row.upper()
        self.assertNotEqual(row, spelled)
        for seconds in (0, 0.2):
            self.assertEqual(writer.ask("newmac", "ucastMacsLocal", spelled, "00:00:5e:00:53:99"), "ok")
            time.sleep(seconds)
            self.assertEqual(writer.ask("del", UNICAST, "entry", f"'{spelled}'"), "ok")
            self.reader.await_that(lambda: spelled not in self.names(self.reader, UNICAST), "the entry is gone")
        # What comes later has been written by the time that the removal would have been.
        time.sleep(0.1)
        self.make_mac(writer, "later", "00:00:5e:00:53:02")
        self.reader.await_value("2", "get", "/vgw/database", "written")
        every = [f"{mac} -> vxlan_over_ipv4/{VTEP}" for mac in (MAC, "00:00:5e:00:53:02")]
        self.await_local("red", *every)
        self.assertIn(row, self.names(self.reader, UNICAST))
        self.assertEqual(self.reader.ask("get", "/vgw/database", "refused"), "0")

    def test_a_row_of_another_class_is_undone(self):
        writer = self.writer(UNICAST)
        self.assertEqual(writer.ask("newmac", "ucastMacsLocal", "odd", MAC, "mcastMacsLocal"), "ok")
        self.await_refused(f"{UNICAST}/odd", "it is no row of that table")
        writer.await_that(lambda: self.names(writer, UNICAST) == [], "the writer's row is gone")

    def test_description_and_faults_of_a_port_are_written(self):
        port = f"{ROWS}/physicalPort/{self.uuid('Physical_Port', 'p1')}"
        writer = self.writer(port)
        writer.ask("set", port, "desc", "'uplink'")
        writer.ask("set", port, "fault", "'no-light'", "true")
        self.reader.await_that(lambda: self.column("Physical_Port", "p1", "description") == "uplink", "the description")
        self.reader.await_that(lambda: self.column("Physical_Port", "p1", "port_fault_status") == "[no-light]", "the fault")
        writer.ask("del", port, "fault", "'no-light'")
        self.reader.await_that(lambda: self.column("Physical_Port", "p1", "port_fault_status") == "[]", "no fault")
        self.await_rows(self.reader, self.db.read())

    def test_of_two_writes_of_one_value_the_last_stays(self):
        port = f"{ROWS}/physicalPort/{self.uuid('Physical_Port', 'p1')}"
        writer = self.writer(port)
        for n in range(200):
            writer.ask("set", port, "desc", f"'{n}'")
        self.reader.await_that(lambda: self.column("Physical_Port", "p1", "description") == '"199"', "the last one")
        for client in (writer, self.reader):
            client.await_value("'199'", "get", port, "desc")

    def test_what_is_written_without_a_pause_is_written_meanwhile(self):
        port = self.port()
        writer = self.writer(port)
        begin = time.monotonic()
        n = 0
        while self.reader.ask("get", "/vgw/database", "written") == "0":
            n += 1
            writer.ask("set", port, "desc", f"'{n}'")
            self.assertLess(time.monotonic() - begin, 10, "nothing has been written for so long")
            time.sleep(0.003)

    def test_addresses_of_a_switch_are_written(self):
        switch = f"{ROWS}/physicalSwitchRaw/{self.uuid('Physical_Switch', 'tor')}"
        writer = self.writer(switch)
        writer.ask("set", switch, "tunnelIp", "'192.0.2.9'", "true")
        self.reader.await_that(lambda: "192.0.2.9" in self.column("Physical_Switch", "tor", "tunnel_ips"), "the address")
        self.await_rows(self.reader, self.db.read())

    def test_counters_are_written(self):
        self.db.vtep_ctl("--id=@s", "create", "Logical_Binding_Stats", "bytes_from_local=1", "--",
                         "set", "Physical_Port", "p1", "vlan_stats:100=@s")
        stats = self.db.vtep_ctl("--bare", "--columns=_uuid", "list", "Logical_Binding_Stats").strip()
        path = f"{ROWS}/logicalBindingStats/{stats}"
        self.reader.await_that(lambda: stats in self.reader.ask("list", ROWS, "logicalBindingStats"), "the row is here")
        writer = self.writer(path)
        writer.ask("set", path, "inBytes", "9000000000")
        self.reader.await_that(
            lambda: self.column("Logical_Binding_Stats", stats, "bytes_from_local") == "9000000000", "the counter"
        )
        writer.ask("set", path, "inBytes", str(2**63))
        self.await_refused(path, "the database counts to 9223372036854775807")
        writer.await_value("9000000000", "get", path, "inBytes")

    def test_statistics_that_a_writer_asks_for_come_into_being_and_go_with_their_vlan(self):
        port = f"{ROWS}/physicalPort/{self.uuid('Physical_Port', 'p1')}"
        writer = self.writer(port)
        writer.ask("set", port, "vlanStat", "100", "'new'")
        writer.ask("set", port, "vlanStat", "200", "'new'")
        self.reader.await_that(lambda: self.statistics() == 2, "rows of statistics")
        self.await_rows(self.reader, self.db.read())
        stats = self.column("Physical_Port", "p1", "vlan_stats:100")
        for client in (writer, self.reader):
            client.await_value(f"'{stats}'", "get", port, "vlanStat", "100")
        counters = self.writer(f"{ROWS}/logicalBindingStats/{stats}")
        counters.ask("set", f"{ROWS}/logicalBindingStats/{stats}", "outPackets", "7")
        self.reader.await_that(
            lambda: self.column("Logical_Binding_Stats", stats, "packets_to_local") == "7", "the counter"
        )
        writer.ask("del", port, "vlanStat", "100")
        self.reader.await_that(lambda: self.statistics() == 1, "rows of statistics")
        self.assertNotIn(stats, self.db.vtep_ctl("list", "Logical_Binding_Stats"))
        self.await_rows(self.reader, self.db.read())

    def test_statistics_of_no_vlan_or_in_no_row_are_undone(self):
        port = f"{ROWS}/physicalPort/{self.uuid('Physical_Port', 'p1')}"
        writer = self.writer(port)
        writer.ask("set", port, "vlanStat", "5000", "'new'")
        self.await_refused(port, "constraint violation")
        writer.await_value("", "list", port, "vlanStat")
        writer.ask("set", port, "vlanStat", "100", "'00000000-1111-2222-3333-444444444444'")
        self.await_refused(port, "referential integrity violation")
        writer.await_value("", "list", port, "vlanStat")
        self.await_rows(self.reader, self.db.read())

    def test_what_the_controller_writes_is_undone(self):
        port = f"{ROWS}/physicalPort/{self.uuid('Physical_Port', 'p1')}"
        writer = self.writer(port)
        writer.ask("set", port, "vlanBinding", "7", "'x'")
        self.await_refused(port, "vlanBinding may not be written")
        for client in (writer, self.reader):
            client.await_value("", "list", port, "vlanBinding")
        writer.ask("set", port, "invalidAttrib", "'fault'", "true")
        self.await_refused(port, "invalidAttrib may not be written")
        self.reader.await_value("", "list", port, "invalidAttrib")

    def test_only_what_writers_may_change_is_mounted_to_be_written(self):
        self.db.vtep_ctl("add-ucast-remote", "red", "00:00:5e:00:53:02", "192.0.2.2")
        switch = f"{ROWS}/logicalSwitch/{self.uuid('Logical_Switch', 'red')}"
        for path in ("/vgw", "/vgw/status", ROWS, "/vgw/ucastMacsRemote", "/vgw/sessions", "/vgw/database", switch):
            client = self.client(self.agent_, path + ":w")
            client.await_told(f"refused {path}: {path} may only be read")

    def test_the_paths_of_config_are_the_agents_and_its_limits_the_writers(self):
        writer = self.writer("/vgw/config")
        told = writer.ask("get", "/vgw/config", "ovsdbRunDir")
        writer.ask("set", "/vgw/config", "restartSyncShort", "3")
        writer.ask("set", "/vgw/config", "ovsdbRunDir", "'/else'")
        self.await_refused("/vgw/config", "ovsdbRunDir may not be written")
        writer.await_value(told, "get", "/vgw/config", "ovsdbRunDir")
        self.reader.await_value("3", "get", "/vgw/config", "restartSyncShort")

    def test_what_is_written_while_the_database_is_away_is_written_when_it_is_back(self):
        writer = self.writer(UNICAST)
        switch = self.uuid("Logical_Switch", "red")
        self.db.kill()
        self.reader.await_value("false", "get", "/vgw/database", "inStep")
        writer.ask("newmac", "ucastMacsLocal", "mine", MAC)
        writer.ask("set", f"{UNICAST}/mine", "logicalSwitch", f"'{switch}'")
        writer.ask("set", f"{UNICAST}/mine", "vtepIp", f"'{VTEP}'")
        self.db.start()
        self.await_local("red", f"{MAC} -> vxlan_over_ipv4/{VTEP}")
        self.await_rows(self.reader, self.db.read())

    def test_the_agent_acts_on_its_configuration_that_a_writer_changes(self):
        writer = self.writer("/vgw/cliConfig")
        writer.ask("set", "/vgw/cliConfig", "managerIp", "'192.0.2.40'")
        self.reader.await_that(lambda: self.db.vtep_ctl("get-manager").strip() == "ssl:192.0.2.40:6632", "the manager is set")


class PendingTest(write_case.WriteCase):
    """A value or member that waits while another of its row is under way."""

    def agent(self, server, *options, name="agent"):
        agent = Agent(self.directory / name, server.remote, *options, watch=True)
        self.addCleanup(agent.stop)
        return agent.start()

    def write_in_two_transactions(self, writer, row, *writes):
        """The second of them goes when the first, which waits for the server, has been taken."""
        self.db.pause()
        for attribute, *value in writes:
            writer.ask("set", row, attribute, *value)
            time.sleep(0.15 * SLOWNESS)
        self.db.resume()

    def heard_of(self, row, attribute):
        return [line.split(f".{attribute}")[1] for line in self.agent_.heard() if f" {row}.{attribute}" in line]

    def test_a_value_that_waits_never_changes_back_and_the_last_word_counts(self):
        port = self.port()
        writer = self.writer(port)
        writer.ask("set", port, "desc", "'x'")
        self.reader.await_that(lambda: self.column("Physical_Port", "p1", "description") == "x", "x is written")
        self.write_in_two_transactions(writer, port, ("fault", "'a'", "true"), ("desc", "'y'"))
        self.reader.await_that(lambda: self.column("Physical_Port", "p1", "description") == "y", "y is written")
        self.assertEqual(self.heard_of(port, "desc"), [' -> "x"', ' "x" -> "y"'])
        self.assertEqual(self.heard_of(port, "fault"), ["[a] -> true"])
        writer.ask("set", port, "desc", "'x'")
        self.reader.await_that(lambda: self.column("Physical_Port", "p1", "description") == "x", "x is written again")
        self.await_rows(self.reader, self.db.read())

    def test_members_that_wait_never_come_and_go(self):
        port, switch = self.port(), self.switch()
        writer = self.writer(port, switch)
        self.write_in_two_transactions(writer, port, ("fault", "'a'", "true"), ("fault", "'b'", "true"))
        self.write_in_two_transactions(writer, switch, ("tunnelIp", "'192.0.2.8'", "true"), ("tunnelIp", "'192.0.2.9'", "true"))
        self.reader.await_that(lambda: self.members("Physical_Port", "p1", "port_fault_status") == {"a", "b"}, "both faults")
        tunnels = {"192.0.2.8", "192.0.2.9"}
        self.reader.await_that(lambda: self.members("Physical_Switch", "tor", "tunnel_ips") == tunnels, "both addresses")
        self.assertEqual(self.heard_of(port, "fault"), ["[a] -> true", "[b] -> true"])
        self.assertEqual(self.heard_of(switch, "tunnelIp"), ["[192.0.2.8] -> true", "[192.0.2.9] -> true"])
        self.assertEqual(self.reader.ask("get", "/vgw/database", "refused"), "0")


    def test_an_address_that_waits_never_changes_back(self):
        writer = self.writer(UNICAST)
        self.make_mac(writer)
        self.await_local("red", f"{MAC} -> vxlan_over_ipv4/{VTEP}")
        self.reader.await_that(lambda: self.names(self.reader, UNICAST) != ["mine"], "the row is under its UUID")
        row = f"{UNICAST}/{self.names(self.reader, UNICAST)[0]}"
        blue = self.uuid("Logical_Switch", "blue")
        self.write_in_two_transactions(writer, row, ("logicalSwitch", f"'{blue}'"), ("vtepIp", "'192.0.2.8'"))
        self.await_local("blue", f"{MAC} -> vxlan_over_ipv4/192.0.2.8")
        self.assertEqual(self.heard_of(row, "vtepIp"), [f" -> {VTEP}", f" {VTEP} -> 192.0.2.8"])
        self.assertEqual(len(self.heard_of(row, "logicalSwitch")), 2)
        writer.ask("set", row, "vtepIp", f"'{VTEP}'")
        self.await_local("blue", f"{MAC} -> vxlan_over_ipv4/{VTEP}")
        self.await_rows(self.reader, self.db.read())

    def test_vteps_of_a_multicast_address_that_wait_never_come_and_go(self):
        self.db.vtep_ctl("add-mcast-local", "red", "unknown-dst", VTEP)
        self.reader.await_that(lambda: self.names(self.reader, MULTICAST), "the row")
        row = f"{MULTICAST}/{self.names(self.reader, MULTICAST)[0]}"
        writer = self.writer(MULTICAST)
        more = ("192.0.2.8", "192.0.2.9")
        self.write_in_two_transactions(writer, row, *(("vtepIp", f"'{address}'", "true") for address in more))
        self.await_local("red", *(f"unknown-dst -> vxlan_over_ipv4/{address}" for address in (VTEP, *more)))
        self.assertEqual(self.heard_of(row, "vtepIp"), [f"[{address}] -> true" for address in (VTEP, *more)])
        self.write_in_two_transactions(writer, row, ("vtepIp", f"'{VTEP}'", "false"), ("vtepIp", "'192.0.2.7'", "true"))
        self.await_local("red", *(f"unknown-dst -> vxlan_over_ipv4/{address}" for address in ("192.0.2.7", *more)))
        self.assertEqual(self.reader.ask("get", "/vgw/database", "refused"), "0")
        self.await_rows(self.reader, self.db.read())

    def test_a_counter_that_waits_never_counts_back(self):
        port = self.port()
        writer = self.writer(port)
        writer.ask("set", port, "vlanStat", "7", "'new'")
        self.reader.await_that(lambda: self.statistics() == 1, "a row of statistics")
        row = f"{ROWS}/logicalBindingStats/{self.reader.ask('list', ROWS, 'logicalBindingStats').split()[0][1:-1]}"
        writer = self.writer(row)
        self.write_in_two_transactions(writer, row, ("inPackets", "1"), ("inBytes", "1500"))
        bytes_in = lambda: self.db.vtep_ctl("--bare", "--columns=bytes_from_local", "list", "Logical_Binding_Stats").strip()
        self.reader.await_that(lambda: bytes_in() == "1500", "the bytes are written")
        self.assertEqual(self.heard_of(row, "inBytes"), [" -> 1500"])
        self.assertEqual(self.heard_of(row, "inPackets"), [" -> 1"])
        self.await_rows(self.reader, self.db.read())


class ManyRowsTest(write_case.WriteCase):
    def cost_of_rows(self, writer, first, count):
        """The agent's processor time for rows that a writer makes, which wait as the database is away."""
        before = self.agent_.busy()
        macs = (f"00:00:5e:{n >> 16:02x}:{n >> 8 & 255:02x}:{n & 255:02x}" for n in range(first, first + count))
        writer.ask_all([f"newmac ucastMacsLocal r{n} {mac}" for n, mac in enumerate(macs, first)])
        self.await_rest(writer, quiet=1, timeout=60)
        return self.agent_.busy() - before

    def test_a_row_does_not_cost_more_where_many_wait_already(self):
        writer = self.writer(UNICAST)
        self.db.stop()
        rows = volume(6000, 1500)
        first = self.cost_of_rows(writer, 0, rows)
        self.cost_of_rows(writer, rows, rows)
        third = self.cost_of_rows(writer, 2 * rows, rows)
        # Were all looked through, it would be more than five times as much.
        self.assertLess(third, 3 * first + 0.05)

    def test_rows_that_wait_for_what_they_lack_cost_nothing_meanwhile(self):
        writer = self.writer(UNICAST)
        rows = volume(6000, 1500)
        self.cost_of_rows(writer, 0, rows)
        before = self.agent_.busy()
        time.sleep(2)
        self.assertLess(self.agent_.busy() - before, 0.3)

    def cost_of_vteps(self, writer, row, first, count):
        before = self.agent_.busy()
        writer.ask_all([f"set {row} vtepIp '198.18.{n >> 8}.{n & 255}' true" for n in range(first, first + count)])
        self.await_rest(writer, quiet=1, timeout=60)
        return self.agent_.busy() - before

    def test_a_vtep_of_a_multicast_address_does_not_cost_more_where_there_are_many_already(self):
        self.db.vtep_ctl("add-mcast-local", "red", "unknown-dst", VTEP)
        self.reader.await_that(lambda: self.names(self.reader, MULTICAST), "the row")
        row = f"{MULTICAST}/{self.names(self.reader, MULTICAST)[0]}"
        writer = self.writer(MULTICAST)
        self.db.stop()
        vteps = volume(2000, 300)
        self.cost_of_vteps(writer, row, 0, 2 * vteps)
        # Each that goes through all the others takes more than a second of them.
        self.assertLess(self.cost_of_vteps(writer, row, 2 * vteps, vteps), 0.25 * SLOWNESS)
        self.db.start()
        count = lambda: len(self.db.vtep_ctl("--bare", "--columns=_uuid", "list", "Physical_Locator").split())
        self.reader.await_that(lambda: count() == 3 * vteps + 1, "all are in the database")
        self.assertEqual(self.reader.ask("get", "/vgw/database", "refused"), "0")
        self.await_rows(self.reader, self.db.read())


if __name__ == "__main__":
    serve_case.main()
