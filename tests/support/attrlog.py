"""The attribute log's frames, spoken by hand: for peers that do what no session of the library would."""
import socket
import struct
import time

HELLO, MOUNT, MOUNTED, SYNCED, REFUSED, UNMOUNT, ERROR, PING, PONG = range(1, 10)
MAGIC = 0x514F524C
RECORD, TRANSACTION, LINK = range(3)
ORPHAN = 1, 136


def text(value):
    data = value.encode() if isinstance(value, str) else value
    return struct.pack(">I", len(data)) + data


def frame(kind, entity, attribute, payload, tag=1, word_b=0):
    body = struct.pack(">BQiBIIB", kind, entity, attribute, tag, 0, word_b, 0) + b"\1" + payload + b"\3"
    return struct.pack(">I", len(body)) + body


def link(operation, payload):
    return frame(LINK, 0, 0, bytes([operation]) + payload)


def hello(protocol=2, magic=MAGIC):
    return link(HELLO, struct.pack(">III", magic, protocol, 1 << 20))


def mount(number, path, writable=False):
    return link(MOUNT, struct.pack(">I?", number, writable) + text(path))


class Frame:
    def __init__(self, body):
        self.kind, self.entity, self.attribute = struct.unpack_from(">BQi", body)
        self.payload = body[24:-1]

    @property
    def link(self):
        """The operation and what follows it; None for other frames."""
        return (self.payload[0], self.payload[1:]) if self.kind & 0x7F == LINK else None


class Peer:
    """A connection without manners."""

    def __init__(self, place, greets=True, tls=None):
        """`place` is the path of a unix socket, or a port of this machine; `tls` the context to connect with."""
        is_port = isinstance(place, int)
        self.socket = socket.socket(socket.AF_INET if is_port else socket.AF_UNIX)
        try:
            self.socket.connect(("127.0.0.1", place) if is_port else str(place))
        except OSError:
            self.socket.close()
            raise
        if tls:
            self.socket = tls.wrap_socket(self.socket)
        self._bytes = b""
        if greets:
            try:
                self.send(hello())
            except BrokenPipeError:
                pass  # refused already; why can still be read

    def send(self, data):
        self.socket.sendall(data)

    def next(self, timeout=10):
        """The next frame; None at the connection's end."""
        self.socket.settimeout(timeout)
        while True:
            size = struct.unpack(">I", self._bytes[:4])[0] if len(self._bytes) >= 4 else None
            if size is not None and len(self._bytes) >= 4 + size:
                body, self._bytes = self._bytes[4 : 4 + size], self._bytes[4 + size :]
                return Frame(body)
            try:
                got = self.socket.recv(65536)
            except ConnectionError:
                return None
            if not got:
                return None
            self._bytes += got

    def await_link(self, *operations, timeout=10):
        """The first link message of one of those kinds: the kind and its fields; None at the end."""
        deadline = time.monotonic() + timeout
        while (got := self.next(max(0.01, deadline - time.monotonic()))) is not None:
            if got.link and got.link[0] in operations:
                return got.link
        return None

    def mounted(self, number, path, writable=False):
        """The id under which the entity is mounted. A refusal is raised."""
        self.send(mount(number, path, writable))
        kind, fields = self.await_link(MOUNTED, REFUSED, ERROR)
        if kind != MOUNTED:
            raise PermissionError(fields[8:] if kind == REFUSED else fields[4:])
        return struct.unpack(">Q", fields[4:12])[0]

    def error(self, timeout=10):
        """Why the connection ends, in the agent's words; None if it ends without."""
        got = self.await_link(ERROR, timeout=timeout)
        return got[1][4:].decode() if got else None

    def close(self):
        self.socket.close()
