"""Column values between the wire's notation (RFC 7047, section 5.1) and plain Python ones.

An optional is None or the atom, a set a sorted list, a map a sorted list of [key, value], a uuid a plain string.
"""

# Written by the server itself, every few seconds.
SERVER_OWNED = {("Manager", "status"), ("Manager", "is_connected")}


class Columns:
    """The columns of one schema."""

    def __init__(self, schema):
        self.tables = {
            table: {column: _Type(shape["type"]) for column, shape in content["columns"].items()}
            for table, content in schema["tables"].items()
        }

    def has(self, table, column=None):
        return table in self.tables and (column is None or column in self.tables[table])

    def keep(self, table, row):
        """The part of a plain row that this schema has columns for, in the wire's notation."""
        types = self.tables[table]
        return {column: types[column].to_wire(value) for column, value in row.items() if column in types}

    def read(self, client):
        """The whole database: {table: {uuid: {column: plain value}}}."""
        tables = list(self.tables)
        operations = [
            {
                "op": "select",
                "table": table,
                "where": [],
                "columns": ["_uuid"] + [c for c in self.tables[table] if (table, c) not in SERVER_OWNED],
            }
            for table in tables
        ]
        answers = client.transact(operations)
        return {table: self._plain_rows(table, answer["rows"]) for table, answer in zip(tables, answers)}

    def _plain_rows(self, table, rows):
        types = self.tables[table]
        return {
            row["_uuid"][1]: {column: types[column].to_plain(value) for column, value in row.items() if column != "_uuid"}
            for row in rows
        }


class _Type:
    def __init__(self, shape):
        if isinstance(shape, str):
            shape = {"key": shape}
        self.is_map = "value" in shape
        self.is_scalar = shape.get("min", 1) == 1 and shape.get("max", 1) == 1 and not self.is_map
        self.is_optional = shape.get("min", 1) == 0 and shape.get("max", 1) == 1 and not self.is_map
        self._key = _atom_kind(shape["key"])
        self._value = _atom_kind(shape["value"]) if self.is_map else None

    def to_wire(self, value):
        if self.is_map:
            return ["map", [[_atom_to_wire(self._key, k), _atom_to_wire(self._value, v)] for k, v in value]]
        if self.is_scalar:
            return _atom_to_wire(self._key, value)
        if self.is_optional:
            value = [] if value is None else [value]
        return ["set", [_atom_to_wire(self._key, member) for member in value]]

    def to_plain(self, value):
        if self.is_map:
            return sorted([_atom_to_plain(k), _atom_to_plain(v)] for k, v in value[1])
        if self.is_scalar:
            return _atom_to_plain(value)
        members = value[1] if isinstance(value, list) and value[0] == "set" else [value]
        members = sorted(_atom_to_plain(member) for member in members)
        if self.is_optional:
            return members[0] if members else None
        return members


def _atom_kind(base):
    return base if isinstance(base, str) else base["type"]


def _atom_to_wire(kind, atom):
    return ["uuid", atom] if kind == "uuid" else atom


def _atom_to_plain(atom):
    return atom[1] if isinstance(atom, list) else atom
