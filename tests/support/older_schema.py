"""Other forms of the packaged hardware_vtep schema, made from it."""
import copy


def _strings():
    return {"type": {"key": "string", "value": "string", "min": 0, "max": "unlimited"}}


def older(schema):
    """The form before tunnels had a table: a locator carries its own BFD, and there are no routers, lists or keys.

    Bears version 1.2.0, which had these tables and columns.
    """
    schema = copy.deepcopy(schema)
    tables = schema["tables"]
    for table in ("Tunnel", "Logical_Router", "Arp_Sources_Local", "Arp_Sources_Remote", "ACL", "ACL_entry"):
        del tables[table]
    for table, column in (
        ("Physical_Switch", "tunnels"),
        ("Physical_Port", "acl_bindings"),
        ("Logical_Switch", "replication_mode"),
        ("Physical_Locator", "tunnel_key"),
    ):
        del tables[table]["columns"][column]
    for content in tables.values():
        content["columns"].pop("other_config", None)
    locator = tables["Physical_Locator"]
    locator["columns"].update(bfd=_strings(), bfd_status=_strings())
    locator["indexes"] = [["encapsulation_type", "dst_ip"]]
    schema["version"] = "1.2.0"
    schema.pop("cksum", None)
    return schema


def without_column(schema, table, column):
    """The schema without one column of one table."""
    schema = copy.deepcopy(schema)
    del schema["tables"][table]["columns"][column]
    schema.pop("cksum", None)
    return schema


def without_table(schema, table):
    """The schema without one table, nor any column that refers to it."""
    schema = copy.deepcopy(schema)
    del schema["tables"][table]
    for content in schema["tables"].values():
        for column, shape in list(content["columns"].items()):
            if f'"{table}"' in repr(shape).replace("'", '"'):
                del content["columns"][column]
    schema.pop("cksum", None)
    return schema
