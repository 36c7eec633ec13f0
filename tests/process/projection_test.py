"""The judge of the mirror: what rows must hold for a small database, worked out by hand."""
import unittest

from support import projection

LS, LS2 = "11111111-0000-4000-8000-000000000001", "11111111-0000-4000-8000-000000000002"
LOC, LOC2, LOC3 = (f"22222222-0000-4000-8000-00000000000{n}" for n in (1, 2, 3))
SET = "33333333-0000-4000-8000-000000000001"
ROW, ROW2, ROW3 = (f"44444444-0000-4000-8000-00000000000{n}" for n in (1, 2, 3))
MAC = "00:00:5e:00:53:01"


def locator(address, **columns):
    return {"encapsulation_type": "vxlan_over_ipv4", "dst_ip": address, **columns}


def logical(name, key):
    return {"name": name, "description": "", "tunnel_key": key}


def remote(mac=MAC, switch=LS, to=LOC, ipaddr=""):
    return {"MAC": mac, "logical_switch": switch, "locator": to, "ipaddr": ipaddr}


class ProjectionTest(unittest.TestCase):
    def test_a_switch_without_a_key_holds_one_above_the_greatest_vni(self):
        got = projection.project({"Logical_Switch": {LS: logical("red", None), LS2: logical("blue", 1 << 24)}})
        self.assertEqual(
            got["ovsdb"]["logicalSwitch"],
            {
                LS: {"displayName": "red", "desc": "", "tunnelKey": 16777216, "invalidAttrib": []},
                LS2: {"displayName": "blue", "desc": "", "tunnelKey": 16777216, "invalidAttrib": ["tunnelKey"]},
            },
        )
        self.assertEqual(got["lost"], [f"Logical_Switch {LS2} tunnel_key"])

    def test_a_remote_mac_refers_and_is_referred_to(self):
        got = projection.project(
            {
                "Logical_Switch": {LS: logical("red", 5001)},
                "Physical_Locator": {LOC: locator("192.0.2.1")},
                "Ucast_Macs_Remote": {ROW: remote("00:00:5E:00:53:01"), ROW2: remote(), ROW3: remote("junk")},
            }
        )
        row = {"mac": MAC, "logicalSwitch": LS, "ipAddr": "0.0.0.0", "physicalLocator": LOC}
        self.assertEqual(got["ucastMacsRemote"], {ROW: row, ROW2: row})
        self.assertEqual(got["ovsdb"]["physicalLocatorRaw"][LOC]["ucastMacRef"], [[MAC, 5001]])
        self.assertEqual(got["lost"], [f"Ucast_Macs_Remote {ROW3} MAC"])

    def test_a_shared_address_is_entered_by_the_row_without_a_key(self):
        got = projection.project(
            {
                "Physical_Locator": {
                    LOC: locator("192.0.2.1", tunnel_key=9),
                    LOC2: locator("192.0.2.1", tunnel_key=None),
                    LOC3: locator("2001:db8::1", tunnel_key=None),
                },
                "Physical_Switch": {
                    ROW: {
                        "name": "tor-1",
                        "description": "",
                        "ports": [],
                        "management_ips": [],
                        "tunnel_ips": ["192.0.2.1", "2001:db8::2"],
                    }
                },
            }
        )["ovsdb"]
        self.assertEqual(got["physicalLocator"], {"192.0.2.1": LOC2})
        self.assertEqual(got["remoteLocator"], {})
        self.assertEqual(got["physicalLocatorRaw"][LOC3]["invalidAttrib"], ["key"])
        self.assertEqual(got["physicalSwitchRaw"][ROW]["tunnelIp"], ["192.0.2.1"])
        self.assertEqual(got["physicalSwitchRaw"][ROW]["invalidAttrib"], ["tunnelIp"])

    def test_unknown_destinations_are_the_zero_address_of_multicast_rows(self):
        got = projection.project(
            {
                "Logical_Switch": {LS: logical("red", 7)},
                "Physical_Locator": {LOC: locator("192.0.2.2"), LOC2: locator("192.0.2.10")},
                "Physical_Locator_Set": {SET: {"locators": [LOC, LOC2]}},
                "Mcast_Macs_Local": {
                    ROW: {"MAC": "unknown-dst", "logical_switch": LS, "locator_set": SET, "ipaddr": ""}
                },
            }
        )
        self.assertEqual(
            got["mcastMacsLocal"][ROW],
            {
                "macAddr": "00:00:00:00:00:00",
                "uuid": ROW,
                "logicalSwitch": LS,
                "vni": 7,
                "vtepIp": ["192.0.2.2", "192.0.2.10"],
                "physicalLocatorSet": SET,
            },
        )
        self.assertEqual(got["ovsdb"]["physicalLocatorRaw"][LOC]["mcastMacRef"], [["00:00:00:00:00:00", 7]])

    def test_tunnels_that_disagree_leave_the_locator_without_bfd_and_marked(self):
        def tunnel(enable):
            return {"local": LOC2, "remote": LOC, "bfd_params": [["enable", enable]], "bfd_status": []}

        tables = {"Physical_Locator": {LOC: locator("192.0.2.1")}, "Tunnel": {ROW: tunnel("true"), ROW2: tunnel("true")}}
        agreed = projection.project(tables)["ovsdb"]["physicalLocatorRaw"][LOC]
        self.assertEqual((agreed["bfd"], agreed["invalidAttrib"]), ([["enable", "true"]], []))
        tables["Tunnel"][ROW2] = tunnel("false")
        differing = projection.project(tables)["ovsdb"]["physicalLocatorRaw"][LOC]
        self.assertEqual((differing["bfd"], differing["invalidAttrib"]), ([], ["bfd"]))


if __name__ == "__main__":
    unittest.main()
