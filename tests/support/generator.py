"""Fills an empty hardware_vtep database with a made-up network; the same seed gives the same rows, uuids included.

One physical switch with ports and VLAN bindings, lasting locators kept alive by one multicast row, logical switches with
an unknown-dst row each, and MAC rows. `odd` adds what the typed rows can't hold whole.
"""
import random as random_module
import uuid as uuid_module

from . import addresses

BATCH = 500


class Row:
    """An insert to be made: table, uuid and plain values."""

    def __init__(self, table, uuid, values):
        self.table, self.uuid, self.values = table, uuid, values


class Generator:
    """Writes through a client; keeps no model of the database."""

    def __init__(self, columns, seed, odd=False):
        self.columns = columns
        self.random = random_module.Random(seed)
        self.odd = odd

    def uuid(self):
        return str(uuid_module.UUID(int=self.random.getrandbits(128), version=4))

    def chance(self, share):
        return self.odd and self.random.random() < share

    def insert(self, row):
        """The operation that makes the row, restricted to the schema's columns."""
        return {
            "op": "insert",
            "table": row.table,
            "uuid": row.uuid,
            "row": self.columns.keep(row.table, row.values),
        }

    def new(self, table, **values):
        return Row(table, self.uuid(), values)

    def fill(self, client, remote_macs=1000, local_macs=100, logical_switches=20, ports=16, locators=50):
        """Commits the whole network in batches."""
        locator_rows = [self.locator(address) for address in addresses.LASTING[:locators]]
        # Locators live while something refers to them: the first transaction holds all of them by one set.
        switches = [self.logical_switch(i) for i in range(logical_switches)]
        anchor = self.new("Physical_Locator_Set", locators=sorted(row.uuid for row in locator_rows))
        holder = self.remote_multicast(switches[0].uuid, anchor.uuid, addresses.multicast_mac(self.random))
        rows = locator_rows + switches + [anchor, holder] + self._hardware(ports, switches)
        if self.columns.has("Tunnel"):
            rows += self._tunnels(rows, locator_rows)
        client.transact([self.insert(row) for row in rows if self.columns.has(row.table)])
        self._fill_macs(client, switches, locator_rows, remote_macs, local_macs)

    def _fill_macs(self, client, switches, locators, remote_macs, local_macs):
        rows = []
        for switch in switches:
            rows += self.flood(switch.uuid, self.random.sample([row.uuid for row in locators], min(4, len(locators))))
        for count, make in ((remote_macs, self.remote_unicast), (local_macs, self.local_unicast)):
            for _ in range(count):
                rows.append(make(self.random.choice(switches).uuid, self.random.choice(locators).uuid))
        for start in range(0, len(rows), BATCH):
            client.transact([self.insert(row) for row in rows[start : start + BATCH]])

    # --- one row each

    def locator(self, address, tunnel_key=None):
        return self.new(
            "Physical_Locator",
            encapsulation_type="vxlan_over_ipv4",
            dst_ip=address,
            tunnel_key=tunnel_key,
            bfd=self.bfd(),
            bfd_status=[["state", "up"]] if self.random.random() < 0.5 else [],
        )

    def bfd(self):
        pairs = {"enable": self.random.choice(["true", "false"]), "min_rx": str(self.random.randrange(100, 1000))}
        if self.chance(0.5):
            pairs[self.random.choice(["a", "b"])] = ""
        return sorted(map(list, pairs.items()))

    def logical_switch(self, index):
        key = 5000 + index
        if self.chance(0.3):
            key = self.random.choice([None, -1, 0, 0xFFFFFF, 0x1000000, 99999999999])
        return self.new(
            "Logical_Switch", name=f"ls-{index:05d}", description=self.description(), tunnel_key=key
        )

    def description(self):
        if self.chance(0.3):
            return self.random.choice(['quoted "\\" text', "line\nbreak\ttab\x01", "größe 尺寸 \U0001F9ED", "{[}]"])
        return f"tenant {self.random.randrange(1000)}"

    def remote_unicast(self, switch, locator):
        return self.new(
            "Ucast_Macs_Remote", MAC=self.mac(), logical_switch=switch, locator=locator, ipaddr=self.host_address()
        )

    def local_unicast(self, switch, locator):
        return self.new(
            "Ucast_Macs_Local", MAC=self.mac(), logical_switch=switch, locator=locator, ipaddr=self.host_address()
        )

    def remote_multicast(self, switch, locator_set, mac):
        return self.new(
            "Mcast_Macs_Remote", MAC=mac, logical_switch=switch, locator_set=locator_set, ipaddr=self.host_address()
        )

    def flood(self, switch, members):
        """Where a switch's unknown destinations go: a remote set, and a local one of its first member."""
        remote = self.new("Physical_Locator_Set", locators=sorted(members))
        local = self.new("Physical_Locator_Set", locators=members[:1])
        return [
            remote,
            local,
            self.remote_multicast(switch, remote.uuid, "unknown-dst"),
            self.new(
                "Mcast_Macs_Local", MAC="unknown-dst", logical_switch=switch, locator_set=local.uuid, ipaddr=""
            ),
        ]

    def mac(self):
        if self.chance(0.03):
            return self.random.choice(["junk", "", "unknown-dst", "00:00:5e:00:53:0", "00-00-5e-00-53-01", "0:0:0:0:0:0"])
        mac = addresses.unicast_mac(self.random)
        return mac.upper() if self.chance(0.1) else mac

    def host_address(self):
        if self.chance(0.1):
            return self.random.choice([addresses.ipv6(self.random), "192.0.2.256", "192.0.2", "here", "192.0.2.1 "])
        return self.random.choice(["", self.random.choice(addresses.LASTING)])

    def statistics(self):
        low = -5 if self.chance(0.3) else 0
        names = ("bytes_from_local", "packets_from_local", "bytes_to_local", "packets_to_local")
        return self.new(
            "Logical_Binding_Stats", **{name: self.random.choice([low, self.random.randrange(1 << 50)]) for name in names}
        )

    def manager(self):
        """Its target is unique in the table; nobody dials it, as the server is told of no remotes in the database."""
        return self.new("Manager", target=f"tcp:[2001:db8::{self.uuid()[:4]}:{self.uuid()[:4]}]:6640")

    def odd_address(self):
        """A locator's address that is no IPv4 one, or that another row has too (where keys tell rows apart)."""
        odd = [addresses.ipv6(self.random), f"junk {self.random.randrange(1 << 30)}"]
        if self.columns.has("Physical_Locator", "tunnel_key"):
            odd.append(self.random.choice(addresses.LASTING[:4]))
        return self.random.choice(odd)

    # --- the hardware

    def _hardware(self, ports, switches):
        rows = []
        port_rows = []
        for index in range(ports):
            vlans = self.random.sample(range(4096), 3)
            statistics = [self.statistics() for _ in vlans]
            port_rows.append(
                self.new(
                    "Physical_Port",
                    name=f"Ethernet{index + 1}",
                    description=self.description(),
                    vlan_bindings=[[vlan, self.random.choice(switches).uuid] for vlan in vlans],
                    vlan_stats=[[vlan, row.uuid] for vlan, row in zip(vlans, statistics)],
                    port_fault_status=self.random.choice([[], ["invalid_vlan_map"]]),
                )
            )
            rows += statistics
        switch_rows = [self._physical_switch(index, port_rows[index::2]) for index in range(2)]
        top = self.new("Global", switches=sorted(row.uuid for row in switch_rows), managers=[])
        return rows + port_rows + switch_rows + [top]

    def _physical_switch(self, index, ports):
        extra = [addresses.ipv6(self.random)] if self.odd else []
        return self.new(
            "Physical_Switch",
            name=f"tor-{index + 1}",
            description=self.description(),
            ports=sorted(row.uuid for row in ports),
            management_ips=[f"192.0.2.{250 + index}"] + extra,
            tunnel_ips=[addresses.LASTING[index]] + extra,
            switch_fault_status=[],
        )

    def _tunnels(self, rows, locators):
        """From each switch to some locators; when odd, two that disagree about one locator's BFD."""
        tunnels = []
        for switch in (row for row in rows if row.table == "Physical_Switch"):
            far = self.random.sample(locators[2:], min(8, len(locators) - 2))
            own = [self.tunnel(locators[0].uuid, locator.uuid) for locator in far]
            switch.values["tunnels"] = sorted(row.uuid for row in own)
            tunnels += own
        return tunnels

    def tunnel(self, local, remote):
        params = self.bfd() if self.odd else [["enable", "true"]]
        return self.new("Tunnel", local=local, remote=remote, bfd_params=params, bfd_status=[["state", "up"]])
