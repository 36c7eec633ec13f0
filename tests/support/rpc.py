"""A small blocking OVSDB client (RFC 7047) over a unix socket."""
import itertools
import json
import re
import socket

DATABASE = "hardware_vtep"
_DECODER = json.JSONDecoder()
_SPACE = re.compile(r"\s*")


class RpcError(Exception):
    """The server answered with an error, or the connection is gone."""


class Framer:
    """Cuts a byte stream into JSON objects. It looks when what came ends as one does: a text may too, and is then looked at
    again."""

    def __init__(self):
        self._buffer = bytearray()

    def feed(self, data):
        """The whole objects that are there now; one before a part of another may wait for the rest of that."""
        self._buffer += data
        if not self._buffer.rstrip().endswith(b"}"):
            return []
        text = self._buffer.decode()
        values, start = [], 0
        while start < len(text):
            try:
                value, start = _DECODER.raw_decode(text, start)
            except json.JSONDecodeError:
                break
            values.append(value)
            start = _SPACE.match(text, start).end()
        self._buffer = bytearray(text[start:].encode())
        return values


class Client:
    """One connection. REQUIRES: one thread."""

    def __init__(self, path, timeout=60):
        self._socket = socket.socket(socket.AF_UNIX, socket.SOCK_STREAM)
        self._socket.settimeout(timeout)
        self._framer = Framer()
        self._ids = itertools.count(1)
        self._waiting = []
        try:
            self._socket.connect(str(path))
        except OSError as error:
            self._socket.close()
            raise RpcError(f"{path}: {error}") from error

    def close(self):
        self._socket.close()

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.close()

    def call(self, method, params):
        """The result of one request; echoes of the server are answered meanwhile."""
        request = next(self._ids)
        self._send({"method": method, "params": params, "id": request})
        while True:
            message = self._receive()
            if message.get("method") == "echo":
                self._send({"result": message["params"], "error": None, "id": message["id"]})
            elif message.get("id") == request and "method" not in message:
                if message.get("error") is not None:
                    raise RpcError(f"{method}: {message['error']}")
                return message["result"]

    def transact(self, operations):
        """The operations' results; RpcError names the first that failed, or what the commit found."""
        results = self.call("transact", [DATABASE, *operations])
        for index, result in enumerate(results):
            if result and "error" in result:
                operation = operations[index] if index < len(operations) else "commit"
                raise RpcError(f"{result} in {operation}")
        return results

    def schema(self):
        return self.call("get_schema", [DATABASE])

    def _send(self, message):
        try:
            self._socket.sendall(json.dumps(message).encode())
        except OSError as error:
            raise RpcError(f"sending: {error}") from error

    def _receive(self):
        while not self._waiting:
            try:
                data = self._socket.recv(1 << 18)
            except OSError as error:
                raise RpcError(f"receiving: {error}") from error
            if not data:
                raise RpcError("the server closed the connection")
            self._waiting += self._framer.feed(data)
        return self._waiting.pop(0)
