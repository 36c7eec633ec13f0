"""A small network, and what vgwctl is asked about it."""


def uuid(number):
    return f"00000000-0000-4000-8000-{number:012}"


SWITCH, PORT, RED, BLUE, LOCATOR, MAC = map(uuid, range(1, 7))
OVSDB = "/vgw/status/ovsdb"


def insert(table, identifier, **row):
    return {"op": "insert", "table": table, "uuid": identifier, "row": row}


NETWORK = [
    insert("Logical_Switch", RED, name="red", tunnel_key=5001, description="tenant one"),
    insert("Logical_Switch", BLUE, name="blue", description="say \"hi\", \u001b[2J"),
    insert("Physical_Locator", LOCATOR, encapsulation_type="vxlan_over_ipv4", dst_ip="192.0.2.1"),
    insert("Physical_Port", PORT, name="Ethernet1", vlan_bindings=["map", [[100, ["uuid", RED]], [200, ["uuid", BLUE]]]]),
    insert("Physical_Switch", SWITCH, name="leaf-1", tunnel_ips="192.0.2.101", ports=["uuid", PORT]),
    insert("Ucast_Macs_Remote", MAC, MAC="00:00:5e:00:53:01", logical_switch=["uuid", RED], locator=["uuid", LOCATOR]),
    {"op": "mutate", "table": "Global", "where": [], "mutations": [["switches", "insert", ["uuid", SWITCH]]]},
]

# Each is run, and its output stands in the golden file.
COMMANDS = [
    ["tree", "/vgw/status"],
    ["tree", OVSDB],
    ["show", "/vgw/cliConfig"],
    ["show", f"{OVSDB}/logicalSwitch/{RED}"],
    ["show", OVSDB],
    ["-f", "json", "show", f"{OVSDB}/logicalSwitch/{RED}"],
    ["-f", "json", "tree", "/vgw/ucastMacsRemote"],
    ["--columns=displayName,tunnelKey,desc", "list", "logical_switch"],
    ["--columns=displayName,tunnelKey,desc", "-d", "bare", "list", "logical_switch"],
    ["--columns=displayName,tunnelKey,desc", "-f", "list", "list", "logical_switch"],
    ["--columns=displayName,tunnelKey,desc", "-f", "csv", "list", "logical_switch"],
    ["--columns=displayName,tunnelKey,desc", "-f", "json", "list", "logical_switch"],
    ["--columns=displayName,tunnelKey,desc", "--no-headings", "list", "logical_switch"],
    ["--columns=_path,vlanBinding", "-f", "list", "list", "PhysicalPort", "Ethernet1"],
    ["-f", "json", "--columns=key", "list", f"{OVSDB}/physicalLocatorRaw"],
    ["-f", "list", "list", "/vgw/ucastMacsRemote"],
    ["list", "LogicalBindingStats"],
    ["--columns=displayName", "find", "LogicalSwitch", "tunnelKey=5001"],
    ["--columns=displayName", "find", "LogicalSwitch", "tunnelKey!=5001", "displayName=blue"],
    ["--columns=displayName", "find", "LogicalSwitch", "tunnelKey<100"],
    ["--columns=displayName", "find", "PhysicalPort", f"vlanBinding:100={RED}"],
    ["get", "/vgw/cliConfig", "managerPort", "vtepListType"],
    ["get", f"{OVSDB}/physicalPort/{PORT}", "vlanBinding", "vlanBinding:200"],
    ["-f", "json", "get", f"{OVSDB}/physicalPort/{PORT}", "vlanBinding", "displayName"],
    ["get", OVSDB, "physicalSwitch", "remoteLocator"],
    ["get", "/vgw/cliConfig"],
    ["get", "/vgw/nothing"],
    ["get", "--if-exists", "/vgw/nothing", "color"],
    ["get", "/vgw/cliConfig", "color"],
    ["get", f"{OVSDB}/physicalPort/{PORT}", "vlanBinding:7"],
    ["get", "/vgw/cliConfig", "reset"],
    ["set", "/vgw/cliConfig", "vtepListType=sendToAll", "logSyslog=warning", "--", "get", "/vgw/cliConfig", "vtepListType"],
    ["set", "/vgw/cliConfig", "vtepListType=sendToSome"],
    ["set", "/vgw/cliConfig", "managerIp=192.0.2.256"],
    ["set", "/vgw/cliConfig", "managerPort=x"],
    ["set", "/vgw/cliConfig", "managerTarget=a"],
    ["set", "/vgw/cliConfig", "managerPort"],
    ["set", "/vgw/config", "restartSyncLimit=50", "--", "get", "/vgw/config", "restartSyncLimit"],
    ["set", "/vgw/database", "remote=elsewhere"],
    ["set", f"{OVSDB}/logicalSwitch/{RED}", "tunnelKey=1"],
    ["set", "/vgw/nothing", "a=1"],
    ["del", "/vgw/nothing"],
    ["del", "--if-exists", "/vgw/nothing"],
    ["call", "/vgw/cliConfig", "explode"],
    ["call", OVSDB, "clear"],
    ["call", "/vgw/cliConfig", "managerPort"],
    ["call", "/vgw/cliConfig", "reset", "now"],
    ["wait-until", f"{OVSDB}/logicalSwitch/{RED}", "tunnelKey=5001", "displayName=red"],
    ["-t", "0.3", "wait-until", f"{OVSDB}/logicalSwitch/{RED}", "tunnelKey=1"],
    ["-t", "0.5", "watch", "LogicalSwitch", "displayName,tunnelKey"],
    ["-t", "0.5", "-f", "json", "watch", f"{OVSDB}/logicalSwitch/{RED}"],
    ["-t", "0.5", "-f", "csv", "watch", f"{OVSDB}/physicalPort/{PORT}", "vlanBinding"],
    ["-t", "0.5", "watch", "LogicalSwitch", "!initial"],
    ["watch", "LogicalSwitch", "!everything"],
    ["types", "Vgw::*Type"],
    ["describe", "Vgw::LogicalSwitch"],
    ["describe", "encapsulation_type"],
    ["describe", "PhysicalLocatorKey"],
    ["describe", "Nothing"],
    ["--columns=color", "list", "LogicalSwitch"],
    ["list", "LogicalRouter"],
    ["find", "LogicalSwitch", "tunnelKey"],
    ["explode"],
    ["get"],
    ["get", "--may-exist", "/vgw"],
    ["verify", OVSDB],
    ["complete", "P", "/vgw/ucast"],
    ["complete", "A", "logS", "/vgw/cliConfig"],
    ["complete", "C", "Logical"],
    [],
    ["--nope", "tree"],
    ["-f", "xml", "tree"],
    ["-d", "bold", "tree"],
    ["--timeout=soon", "tree"],
]

# Each is run in every format; DIR is a directory of the test's, AGENT the remote, FORMAT the format.
FORMATS = ("table", "list", "json", "csv")
IN_EVERY_FORMAT = [
    ["show", f"{OVSDB}/physicalPort/{PORT}"],
    ["tree", "/vgw/ucastMacsRemote"],
    ["list", "LogicalSwitch"],
    ["--columns=displayName,tunnelKey", "list", f"{OVSDB}/logicalSwitch", "red"],
    ["--columns=displayName,vlanBinding", "find", "PhysicalPort", "displayName=Ethernet1"],
    ["find", "LogicalSwitch", "tunnelKey<100"],
    ["find", "LogicalRouter"],
    ["get", f"{OVSDB}/physicalPort/{PORT}", "displayName", "vlanBinding"],
    ["get", "/vgw/nothing"],
    ["set", "/vgw/config", "restartSyncLimit=60"],
    ["create", "--may-exist", "/vgw/config"],
    ["del", "--if-exists", "/vgw/nothing"],
    ["set", "/vgw/cliConfig", "managerIp=192.0.2.7", "--", "call", "/vgw/cliConfig", "managerTarget"],
    ["wait-until", f"{OVSDB}/logicalSwitch/{RED}", "tunnelKey=5001"],
    ["-t", "0.3", "watch", f"{OVSDB}/logicalSwitch/{BLUE}", "displayName,desc"],
    ["types", "Vgw::*Type"],
    ["describe", "encapsulation_type"],
    ["verify", OVSDB],
    ["--columns=link,right,silent", "sessions"],
    ["-t", "0.3", "--path=/vgw/cliConfig", "record", "DIR/recorded-FORMAT"],
    ["-t", "0.3", "replay", "DIR/recorded-FORMAT", "DIR/replay.sock"],
    ["-t", "0.3", "relay", "DIR/relay.sock"],
    ["set", "/vgw/cliConfig", "managerIp=192.0.2.9"],
    ["--path=/vgw/cliConfig", "diff", "DIR/recorded-FORMAT", "AGENT"],
]
