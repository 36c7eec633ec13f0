"""What `vgwctl -f json watch` tells of the mirror's rows, folded into what a reader of its lines believes.

    with Watched(remote) as watched:
        watched.await_rows(server.read())

The lines are judged as they come: a row that is told anew while it is there, one that comes back after it was deleted, a
change or a removal of what is not there. None of that is a difference of the database, where an identifier is used once.
MAC rows alone may come back: one whose address is changed, or was none for a while, is made anew.
"""
import json
import subprocess
import threading
import time

from . import ctl, projection
from .agent import SLOWNESS, difference

DATABASE = "/vgw/status/ovsdb"
MAC_TABLES = ("ucastMacsLocal", "mcastMacsLocal", "ucastMacsRemote", "mcastMacsRemote")
ROW_TABLES = (
    "root",
    "manager",
    "physicalSwitchRaw",
    "physicalPort",
    "logicalBindingStats",
    "logicalSwitch",
    "physicalLocatorRaw",
    "physicalLocatorSet",
)
INDEXES = ("physicalSwitch", "physicalLocator", "remoteLocator")
_MAC_FOLDERS = tuple(f"/vgw/{table}/" for table in MAC_TABLES)
_FOLDERS = tuple(f"{DATABASE}/{table}/" for table in ROW_TABLES) + _MAC_FOLDERS


def is_mac(path):
    return path.startswith(_MAC_FOLDERS)


def is_row(path):
    return path.startswith(_FOLDERS)


class Story:
    """The state that the lines tell, and what is wrong with them."""

    def __init__(self):
        self.rows = {}  # path -> {attribute: value}; of a collection {text of the key: (key, value)}
        self.told = 0  # lines about rows and their indexes
        self.repeats = 0  # of them those that told what was known: a value that went and came between two looks
        self.faults = []
        self._deleted = set()

    def take(self, line):
        path = line["path"]
        if line.get("attribute") == "_state" or not (is_row(path) or path == DATABASE):
            return
        if path == DATABASE and line.get("attribute") not in INDEXES:
            return
        self.told += 1
        if "attribute" not in line:
            self._take_row(line["action"], path)
        elif path != DATABASE and path not in self.rows:
            self._fault(line, "of a row that is not there")
        else:
            self._take_value(self.rows.setdefault(path, {}), line)

    def _take_row(self, action, path):
        if action == "delete":
            if self.rows.pop(path, None) is None:
                self._fault(path, "deleted, and was not there")
            if not is_mac(path):
                self._deleted.add(path)
            return
        if path in self.rows:
            self._fault(path, "told anew, and was there")
        if path in self._deleted:
            self._fault(path, "back after its deletion")
        self.rows[path] = {}

    def _take_value(self, row, line):
        attribute, value = line["attribute"], line["value"]
        if "key" not in line:
            value = _held(value)
            self.repeats += row.get(attribute) == value
            row[attribute] = value
            return
        members = row.setdefault(attribute, {})
        name = json.dumps(line["key"], sort_keys=True)
        self.repeats += members.get(name, (None, None))[1] == value
        if value is None:
            members.pop(name, None)
        else:
            members[name] = (line["key"], value)

    def _fault(self, what, why):
        self.faults.append(f"{what}: {why}")

    def told_text(self, expected):
        """What is told in the place of each value that is expected, in the form of the dump."""
        told = {table: self._rows_of(f"/vgw/{table}/", expected[table]) for table in MAC_TABLES}
        database = {table: self._rows_of(f"{DATABASE}/{table}/", expected["ovsdb"][table]) for table in ROW_TABLES}
        indexes = self.rows.get(DATABASE, {})
        for index in INDEXES:
            database[index] = {_index_key(key): _leaf(value) for key, value in indexes.get(index, {}).values()}
        return projection.one_line({"ovsdb": database, **told, "lost": []})

    def _rows_of(self, folder, expected):
        """Values without content are told by no line."""
        rows = {path[len(folder) :]: row for path, row in self.rows.items() if path.startswith(folder)}
        return {
            name: {
                attribute: _plain(row.get(attribute, "" if isinstance(value, str) else {}), value)
                for attribute, value in expected.get(name, {"(unexpected)": ""}).items()
            }
            for name, row in rows.items()
        }


def expected_text(rows):
    """The rows of a projection in the form of Story.told_text."""
    expected = {"ovsdb": dict(rows["ovsdb"]), "lost": []}
    for folder, tables in ((expected, MAC_TABLES), (expected["ovsdb"], ROW_TABLES)):
        held = rows if folder is expected else rows["ovsdb"]
        folder.update({table: {name: _with_sorted_lists(row) for name, row in held[table].items()} for table in tables})
    return projection.one_line(expected)


def _with_sorted_lists(row):
    return {name: sorted(value, key=json.dumps) if isinstance(value, list) else value for name, value in row.items()}


def _held(value):
    """A set or map as its members by the text of their keys; all else as it is."""
    if not (isinstance(value, list) and value and value[0] in ("set", "map")):
        return value
    pairs = [(key, True) for key in value[1]] if value[0] == "set" else value[1]
    return {json.dumps(key, sort_keys=True): (key, held) for key, held in pairs}


def _leaf(value):
    return value.rsplit("/", 1)[-1] if isinstance(value, str) and value.startswith("/vgw/") else value


def _index_key(key):
    return f"{key['encapType']} {key['dstIp']}" if isinstance(key, dict) else key


def _plain(value, like):
    if not isinstance(like, list):
        return _leaf(value)
    keys = [[key["mac"], key["vni"]] if isinstance(key, dict) else key for key, _ in value.values()]
    values = [_leaf(held) for _, held in value.values()]
    is_map = any(held is not True for held in values)
    return sorted([[key, held] for key, held in zip(keys, values)] if is_map else keys, key=json.dumps)


class Watched:
    """A running `vgwctl watch` of all of the agent's tree."""

    def __init__(self, remote):
        self.story = Story()
        self._command = [ctl.program(), f"--db={remote}", "-f", "json", "watch", "/vgw"]
        self._lock = threading.Lock()

    def __enter__(self):
        self._process = subprocess.Popen(
            self._command, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL
        )
        self._reader = threading.Thread(target=self._read, daemon=True)
        self._reader.start()
        return self

    def _read(self):
        for line in self._process.stdout:
            with self._lock:
                self.story.take(json.loads(line))

    def told(self):
        with self._lock:
            return self.story.told

    def faults(self):
        with self._lock:
            return list(self.story.faults)

    def await_rows(self, tables, timeout=30):
        """Until what it told adds up to the tables; the seconds that it took."""
        return self.await_told_rows(projection.project(tables), timeout)

    def await_told_rows(self, rows, timeout=30):
        """The same, of what the tables' projection is."""
        begin = time.monotonic()
        text = expected_text(rows)
        while True:
            with self._lock:
                told = self.story.told_text(rows)
            if told == text:
                return time.monotonic() - begin
            if time.monotonic() - begin > timeout * SLOWNESS or self._process.poll() is not None:
                raise AssertionError(f"after {timeout * SLOWNESS} s: {difference(text, told)}; {self.faults()[:5]}")
            time.sleep(0.05)

    def __exit__(self, *_):
        if self._process.poll() is None:
            self._process.kill()
        self._process.wait(timeout=20)
        self._reader.join(timeout=5)
        self._process.stdout.close()
