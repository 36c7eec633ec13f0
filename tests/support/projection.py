"""What the typed rows must hold for a database, as a pure function of its tables.

project() takes {table: {uuid: {column: plain value}}} (see columns.py) and answers the canonical dump: sets as sorted
lists, maps as sorted lists of pairs, addresses as text, keys as numbers; `lost` names what no row can hold.
"""
import ipaddress
import json
import re

NO_TUNNEL_KEY = 0x1000000  # one above the greatest VNI
GREATEST_VNI = 0xFFFFFF
NO_ADDRESS = "0.0.0.0"
NO_MAC = "00:00:00:00:00:00"
UNKNOWN_DESTINATION = "unknown-dst"
_MAC = re.compile(r"[0-9a-f]{2}(?::[0-9a-f]{2}){5}", re.IGNORECASE | re.ASCII)

COUNTERS = {
    "inBytes": "bytes_from_local",
    "inPackets": "packets_from_local",
    "outBytes": "bytes_to_local",
    "outPackets": "packets_to_local",
}


def canonical_text(rows):
    """The dump of what project() answered, ending with a line's end."""
    return json.dumps(rows, sort_keys=True, indent=1, ensure_ascii=True) + "\n"


def one_line(rows):
    """The same in a tenth of the time."""
    return json.dumps(rows, sort_keys=True)


def in_one_line(dump):
    """A dump's text in that form; where it is no dump, as of a reader that has nothing yet, as it is."""
    try:
        return one_line(json.loads(dump))
    except ValueError:
        return dump


def project(tables):
    return _Projection(tables).answer()


def _address(text):
    try:
        return str(ipaddress.IPv4Address(text))
    except ValueError:
        return None


def _sorted_addresses(addresses):
    return sorted(set(addresses), key=lambda text: int(ipaddress.IPv4Address(text)))


def _vni(key):
    return key if key is not None and 0 <= key <= GREATEST_VNI else None


class _Projection:
    def __init__(self, tables):
        self._tables = tables
        self._lost = []
        self._own_addresses = set()
        self._mac_references = {}  # locator's uuid -> ({(mac, vni)} of unicast, of multicast)

    def answer(self):
        macs = {
            "ucastMacsLocal": self._local_macs("Ucast_Macs_Local", self._one_locator, multicast=False),
            "mcastMacsLocal": self._local_macs("Mcast_Macs_Local", self._set_of_locators, multicast=True),
            "ucastMacsRemote": self._remote_macs("Ucast_Macs_Remote", self._one_locator, multicast=False),
            "mcastMacsRemote": self._remote_macs("Mcast_Macs_Remote", self._set_of_locators, multicast=True),
        }
        switches = self._physical_switches()
        by_address = self._locator_by_address()
        database = {
            "root": self._each("Global", self._global),
            "manager": self._each("Manager", lambda _, row: {"target": row.get("target", ""), "invalidAttrib": []}),
            "physicalSwitchRaw": switches,
            "physicalSwitch": {row["displayName"]: uuid for uuid, row in switches.items()},
            "physicalPort": self._each("Physical_Port", self._port),
            "logicalBindingStats": self._each("Logical_Binding_Stats", self._statistics),
            "logicalSwitch": self._each("Logical_Switch", self._logical_switch),
            "physicalLocatorRaw": self._each("Physical_Locator", self._locator),
            "physicalLocator": by_address,
            "remoteLocator": {
                f"vxlan_over_ipv4 {address}": uuid
                for address, uuid in by_address.items()
                if address not in self._own_addresses
            },
            "physicalLocatorSet": self._each(
                "Physical_Locator_Set", lambda _, row: {"locator": sorted(row.get("locators", [])), "invalidAttrib": []}
            ),
        }
        return {"ovsdb": database, **macs, "lost": sorted(self._lost)}

    def _rows(self, table):
        return self._tables.get(table, {})

    def _each(self, table, make):
        return {uuid: make(uuid, row) for uuid, row in self._rows(table).items()}

    def _lose(self, table, uuid, what):
        self._lost.append(f"{table} {uuid} {what}")

    # --- switches and ports

    @staticmethod
    def _global(_, row):
        return {
            "pSwitch": sorted(row.get("switches", [])),
            "manager": sorted(row.get("managers", [])),
            "invalidAttrib": [],
        }

    def _physical_switches(self):
        return self._each("Physical_Switch", self._physical_switch)

    def _physical_switch(self, uuid, row):
        held = {
            "displayName": row.get("name", ""),
            "desc": row.get("description", ""),
            "port": sorted(row.get("ports", [])),
            "fault": sorted(row.get("switch_fault_status", [])),
            "invalidAttrib": [],
        }
        for attribute, column in (("mgmtIp", "management_ips"), ("tunnelIp", "tunnel_ips")):
            texts = row.get(column, [])
            fitting = [text for text in texts if _address(text)]
            held[attribute] = _sorted_addresses(_address(text) for text in fitting)
            if len(fitting) < len(texts):
                held["invalidAttrib"].append(attribute)
                self._lose("Physical_Switch", uuid, column)
        self._own_addresses.update(held["tunnelIp"])
        return held

    @staticmethod
    def _port(_, row):
        return {
            "displayName": row.get("name", ""),
            "desc": row.get("description", ""),
            "vlanBinding": sorted(row.get("vlan_bindings", [])),
            "vlanStat": sorted(row.get("vlan_stats", [])),
            "fault": sorted(row.get("port_fault_status", [])),
            "invalidAttrib": [],
        }

    def _statistics(self, uuid, row):
        held = {"invalidAttrib": []}
        for attribute, column in COUNTERS.items():
            count = row.get(column, 0)
            held[attribute] = max(count, 0)
            if count < 0:
                held["invalidAttrib"].append(attribute)
                self._lose("Logical_Binding_Stats", uuid, column)
        held["invalidAttrib"].sort()
        return held

    def _logical_switch(self, uuid, row):
        key = row.get("tunnel_key")
        vni = _vni(key)
        does_not_fit = key is not None and vni is None
        if does_not_fit:
            self._lose("Logical_Switch", uuid, "tunnel_key")
        return {
            "displayName": row.get("name", ""),
            "desc": row.get("description", ""),
            "tunnelKey": NO_TUNNEL_KEY if vni is None else vni,
            "invalidAttrib": ["tunnelKey"] if does_not_fit else [],
        }

    # --- locators

    def _locator(self, uuid, row):
        marks = []
        address = _address(row["dst_ip"])
        if address is None:
            marks.append("key")
            self._lose("Physical_Locator", uuid, "dst_ip")
        held = {"key": {"encapType": "vxlan_over_ipv4", "dstIp": address or NO_ADDRESS}}
        for attribute, own, of_tunnel in (("bfd", "bfd", "bfd_params"), ("bfdStatus", "bfd_status", "bfd_status")):
            held[attribute], agree = self._bfd(uuid, row, own, of_tunnel)
            if not agree:
                marks.append(attribute)
                self._lose("Physical_Locator", uuid, attribute)
        unicast, multicast = self._mac_references.get(uuid, (set(), set()))
        held["ucastMacRef"] = [list(pair) for pair in sorted(unicast)]
        held["mcastMacRef"] = [list(pair) for pair in sorted(multicast)]
        held["invalidAttrib"] = sorted(marks)
        return held

    def _bfd(self, uuid, row, own, of_tunnel):
        """The locator's own column where the schema has one, else what the tunnels that end there agree on."""
        if own in row:
            return sorted(row[own]), True
        told = [sorted(tunnel.get(of_tunnel, [])) for tunnel in self._rows("Tunnel").values() if tunnel["remote"] == uuid]
        if any(pairs != told[0] for pairs in told):
            return [], False
        return (told[0] if told else []), True

    def _locator_by_address(self):
        """Of several rows with one address, the one without a key of its own, then the lowest uuid."""
        ranked = {}
        for uuid, row in self._rows("Physical_Locator").items():
            address = _address(row["dst_ip"])
            if address is not None:
                ranked.setdefault(address, []).append((row.get("tunnel_key") is not None, uuid))
        return {address: min(ranks)[1] for address, ranks in ranked.items()}

    # --- MAC rows

    @staticmethod
    def _one_locator(row):
        return "physicalLocator", row["locator"], [row["locator"]]

    def _set_of_locators(self, row):
        members = self._rows("Physical_Locator_Set")[row["locator_set"]]["locators"]
        return "physicalLocatorSet", row["locator_set"], members

    def _local_macs(self, table, locators_of, multicast):
        rows = {}
        for uuid, row, mac in self._rows_with_mac(table, multicast):
            attribute, reference, members = locators_of(row)
            vnis = self._refer(mac, row, members, multicast)
            ends = _sorted_addresses(filter(None, (_address(self._rows("Physical_Locator")[m]["dst_ip"]) for m in members)))
            rows[uuid] = {
                "macAddr": mac,
                "uuid": uuid,
                "logicalSwitch": row["logical_switch"],
                "vni": vnis[0] if vnis else 0,
                "vtepIp": ends if multicast else (ends[0] if ends else NO_ADDRESS),
            }
            if multicast:
                rows[uuid][attribute] = reference
            if row.get("ipaddr"):
                self._lose(table, uuid, "ipaddr")
        return rows

    def _remote_macs(self, table, locators_of, multicast):
        rows = {}
        for uuid, row, mac in self._rows_with_mac(table, multicast):
            attribute, reference, members = locators_of(row)
            self._refer(mac, row, members, multicast)
            text = row.get("ipaddr", "")
            address = _address(text)
            if text and address is None:
                self._lose(table, uuid, "ipaddr")
            rows[uuid] = {
                "mac": mac,
                "logicalSwitch": row["logical_switch"],
                "ipAddr": address or NO_ADDRESS,
                attribute: reference,
            }
        return rows

    def _rows_with_mac(self, table, multicast):
        for uuid, row in self._rows(table).items():
            text = row["MAC"]
            if multicast and text == UNKNOWN_DESTINATION:
                yield uuid, row, NO_MAC
            elif _MAC.fullmatch(text):
                yield uuid, row, text.lower()
            else:
                self._lose(table, uuid, "MAC")

    def _refer(self, mac, row, members, multicast):
        """Enters the pair (MAC, VNI) at each locator; answers the VNIs in the order of the locators' uuids."""
        vnis = []
        switch_vni = _vni(self._rows("Logical_Switch")[row["logical_switch"]].get("tunnel_key"))
        for member in sorted(members):
            vni = switch_vni
            if vni is None:
                vni = _vni(self._rows("Physical_Locator")[member].get("tunnel_key"))
            if vni is not None:
                vnis.append(vni)
                self._mac_references.setdefault(member, (set(), set()))[multicast].add((mac, vni))
        return vnis
