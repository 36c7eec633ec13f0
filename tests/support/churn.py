"""Seeded changes to a generated database: one transaction a step, of every kind that the tables allow.

    churn = Churn(generator, server.read())
    client.transact(churn.step())

It remembers what it may touch next. After a transaction of unknown outcome, build a new one from a fresh read.
"""
from . import addresses

MAC_TABLES = ("Ucast_Macs_Remote", "Ucast_Macs_Local", "Mcast_Macs_Remote", "Mcast_Macs_Local")


def update(columns, table, uuid, **values):
    return {"op": "update", "table": table, "where": [["_uuid", "==", ["uuid", uuid]]], "row": columns.keep(table, values)}


def delete(table, uuid):
    return {"op": "delete", "table": table, "where": [["_uuid", "==", ["uuid", uuid]]]}


class Churn:
    def __init__(self, generator, tables):
        self._make = generator
        self._random = generator.random
        self._columns = generator.columns
        self._macs = {table: {u: row["logical_switch"] for u, row in tables[table].items()} for table in MAC_TABLES}
        self._switches = {uuid: row["name"] for uuid, row in tables["Logical_Switch"].items()}
        self._next_switch = 1 + max(int(name.split("-")[1]) for name in self._switches.values())
        self._anchor_switch = min(self._switches, key=self._switches.get)
        self._hardware = sorted(tables["Physical_Switch"])
        self._global = next(iter(tables["Global"]))
        self._managers = sorted(tables["Manager"])
        self._tunnels = {u: row["tunnels"] for u, row in tables["Physical_Switch"].items() if "tunnels" in row}
        self._learn_locators(tables)
        self._ports = {
            uuid: (dict(map(tuple, row["vlan_bindings"])), dict(map(tuple, row["vlan_stats"])))
            for uuid, row in tables["Physical_Port"].items()
        }
        self._actions = self._weighted_actions()

    def _learn_locators(self, tables):
        address_of = {uuid: row["dst_ip"] for uuid, row in tables["Physical_Locator"].items()}
        sets = tables["Physical_Locator_Set"]
        self._anchor = max(sets, key=lambda uuid: len(sets[uuid]["locators"]))
        self._lasting = sets[self._anchor]["locators"]
        # A passing locator belongs to the one row that brought it, and goes with it.
        self._passing = {
            uuid: address_of[row["locator"]]
            for uuid, row in tables["Ucast_Macs_Remote"].items()
            if row["locator"] not in self._lasting
        }
        self._held_by_anchor = {
            uuid for uuid, row in tables["Mcast_Macs_Remote"].items() if row["locator_set"] == self._anchor
        }

    def _weighted_actions(self):
        weighted = [
            (20, self._add_mac),
            (20, self._remove_mac),
            (30, self._change_mac),
            (4, self._add_switch),
            (1, self._remove_switch),
            (6, self._change_switch),
            (10, self._bind),
            (8, self._unbind),
            (10, self._count),
            (4, self._change_port),
            (4, self._change_hardware),
            (2, self._swap_names),
            (3, self._change_managers),
            (4, self._change_bfd),
        ]
        return [action for weight, action in weighted for _ in range(weight)]

    def step(self):
        """The operations of one transaction; never empty."""
        while True:
            operations = self._random.choice(self._actions)()
            if operations:
                return operations

    # --- MAC rows

    def _pick_mac(self, table):
        choice = [uuid for uuid in self._macs[table] if uuid not in self._held_by_anchor]
        return self._random.choice(choice) if choice else None

    def _pick_switch(self):
        return self._random.choice(list(self._switches))

    def _add_mac(self):
        table = self._random.choice(MAC_TABLES)
        switch = self._pick_switch()
        rows = self._new_mac(table, switch)
        self._macs[table][rows[-1].uuid] = switch
        return [self._make.insert(row) for row in rows]

    def _new_mac(self, table, switch):
        """The rows to insert, the MAC row last."""
        make = self._make
        if table == "Ucast_Macs_Local":
            return [make.local_unicast(switch, self._random.choice(self._lasting))]
        if table == "Ucast_Macs_Remote":
            return self._new_remote(switch)
        members = make.new("Physical_Locator_Set", locators=self._some_locators())
        mac = self._random.choice(["unknown-dst", addresses.multicast_mac(self._random)])
        row = make.remote_multicast(switch, members.uuid, mac)
        row.table = table
        return [members, row]

    def _new_remote(self, switch):
        free = sorted(set(addresses.PASSING) - set(self._passing.values()))
        if not free or self._random.random() < 0.5:
            return [self._make.remote_unicast(switch, self._random.choice(self._lasting))]
        address = self._make.odd_address() if self._make.chance(0.4) else self._random.choice(free)
        locator = self._make.locator(address, tunnel_key=self._tunnel_key_for(address))
        row = self._make.remote_unicast(switch, locator.uuid)
        self._passing[row.uuid] = address
        return [locator, row]

    def _tunnel_key_for(self, address):
        """Several rows may share an address where the schema tells them apart by their keys."""
        if address in addresses.LASTING or self._random.random() < 0.5:
            return self._random.randrange(1 << 40)
        return None

    def _some_locators(self):
        return sorted(self._random.sample(self._lasting, min(len(self._lasting), self._random.randint(1, 5))))

    def _remove_mac(self):
        table = self._random.choice(MAC_TABLES)
        uuid = self._pick_mac(table)
        if uuid is None:
            return []
        self._forget_mac(table, uuid)
        return [delete(table, uuid)]

    def _forget_mac(self, table, uuid):
        del self._macs[table][uuid]
        self._passing.pop(uuid, None)

    def _change_mac(self):
        table = self._random.choice(MAC_TABLES)
        uuid = self._pick_mac(table)
        if uuid is None:
            return []
        what = self._random.choice(["MAC", "ipaddr", "logical_switch", "locator"])
        if what == "locator":
            return self._repoint(table, uuid)
        if what == "MAC":
            value = self._make.mac()
        elif what == "ipaddr":
            value = self._make.host_address()
        else:
            value = self._macs[table][uuid] = self._pick_switch()
        return [update(self._columns, table, uuid, **{what: value})]

    def _repoint(self, table, uuid):
        if table.startswith("Ucast"):
            self._passing.pop(uuid, None)
            return [update(self._columns, table, uuid, locator=self._random.choice(self._lasting))]
        members = self._make.new("Physical_Locator_Set", locators=self._some_locators())
        return [self._make.insert(members), update(self._columns, table, uuid, locator_set=members.uuid)]

    # --- logical switches

    def _add_switch(self):
        row = self._make.logical_switch(self._next_switch)
        self._next_switch += 1
        self._switches[row.uuid] = row.values["name"]
        rows = [row] + self._make.flood(row.uuid, self._random.sample(self._lasting, 2))
        for mac in rows[-2:]:
            self._macs[mac.table][mac.uuid] = row.uuid
        return [self._make.insert(each) for each in rows]

    def _remove_switch(self):
        """With all that refers to it, in one transaction; its ports' bindings too."""
        gone = self._pick_switch()
        if gone == self._anchor_switch or any(self._macs["Mcast_Macs_Remote"][u] == gone for u in self._held_by_anchor):
            return []
        operations = []
        for table in MAC_TABLES:
            for uuid in [u for u, switch in self._macs[table].items() if switch == gone]:
                self._forget_mac(table, uuid)
                operations.append(delete(table, uuid))
        for port, (bindings, statistics) in self._ports.items():
            vlans = [vlan for vlan, switch in bindings.items() if switch == gone]
            for vlan in vlans:
                del bindings[vlan]
                statistics.pop(vlan, None)
            if vlans:
                operations.append(self._store_port(port))
        del self._switches[gone]
        return operations + [delete("Logical_Switch", gone)]

    def _change_switch(self):
        uuid = self._pick_switch()
        made = self._make.logical_switch(self._next_switch)
        what = self._random.choice(["name", "description", "tunnel_key"])
        if what == "name":
            if uuid == self._anchor_switch:
                return []
            self._next_switch += 1
            self._switches[uuid] = made.values["name"]
        return [update(self._columns, "Logical_Switch", uuid, **{what: made.values[what]})]

    # --- ports

    def _store_port(self, port):
        bindings, statistics = self._ports[port]
        return update(
            self._columns,
            "Physical_Port",
            port,
            vlan_bindings=sorted(map(list, bindings.items())),
            vlan_stats=sorted(map(list, statistics.items())),
        )

    def _bind(self):
        port, (bindings, statistics) = self._random.choice(list(self._ports.items()))
        vlan = self._random.choice([0, 4095, self._random.randrange(4096)])
        row = self._make.statistics()
        bindings[vlan] = self._pick_switch()
        statistics[vlan] = row.uuid
        return [self._make.insert(row), self._store_port(port)]

    def _unbind(self):
        port, (bindings, statistics) = self._random.choice(list(self._ports.items()))
        if not bindings:
            return []
        vlan = self._random.choice(list(bindings))
        del bindings[vlan]
        statistics.pop(vlan, None)
        return [self._store_port(port)]

    def _count(self):
        port, (_, statistics) = self._random.choice(list(self._ports.items()))
        values = self._make.statistics().values
        return [update(self._columns, "Logical_Binding_Stats", uuid, **values) for uuid in statistics.values()]

    def _change_port(self):
        port = self._random.choice(list(self._ports))
        faults = self._random.sample(["invalid_vlan_map", "link_down", "fault \u00e9"], self._random.randint(0, 2))
        return [
            update(
                self._columns,
                "Physical_Port",
                port,
                description=self._make.description(),
                port_fault_status=sorted(faults),
            )
        ]

    # --- the hardware

    def _change_hardware(self):
        uuid = self._random.choice(self._hardware)
        extra = [addresses.ipv6(self._random)] if self._make.chance(0.5) else []
        values = {
            "tunnel_ips": sorted(self._random.sample(addresses.LASTING[:8], self._random.randint(1, 3)) + extra),
            "management_ips": sorted(self._random.sample(addresses.PASSING, 2) + extra),
            "description": self._make.description(),
            "switch_fault_status": sorted(self._random.sample(["mac_table_exhaustion", "tunnel_exhaustion"], 1)),
        }
        what = self._random.choice(list(values))
        return [update(self._columns, "Physical_Switch", uuid, **{what: values[what]})]

    def _swap_names(self):
        """Two rows exchange names that are unique in their table: both change in one message."""
        first, second = self._hardware[:2]
        names = [f"tor-{self._random.randrange(1000)}a", f"tor-{self._random.randrange(1000)}b"]
        if self._random.random() < 0.5:
            names.reverse()
        return [
            update(self._columns, "Physical_Switch", first, name=names[0]),
            update(self._columns, "Physical_Switch", second, name=names[1]),
        ]

    def _change_managers(self):
        operations = []
        if len(self._managers) < 3:
            row = self._make.manager()
            self._managers.append(row.uuid)
            operations.append(self._make.insert(row))
        else:
            del self._managers[self._random.randrange(len(self._managers))]
        return operations + [update(self._columns, "Global", self._global, managers=sorted(self._managers))]

    def _change_bfd(self):
        if not self._columns.has("Tunnel"):
            locator = self._random.choice(self._lasting)
            return [update(self._columns, "Physical_Locator", locator, bfd=self._make.bfd())]
        switch, tunnels = self._random.choice(list(self._tunnels.items()))
        if tunnels and self._random.random() < 0.5:
            tunnel = self._random.choice(tunnels)
            return [update(self._columns, "Tunnel", tunnel, bfd_params=self._make.bfd(), bfd_status=[["state", "down"]])]
        if len(tunnels) > 8:
            tunnels.pop(0)
            return [update(self._columns, "Physical_Switch", switch, tunnels=sorted(tunnels))]
        row = self._make.tunnel(self._lasting[0], self._random.choice(self._lasting))
        tunnels.append(row.uuid)
        return [self._make.insert(row), update(self._columns, "Physical_Switch", switch, tunnels=sorted(tunnels))]
