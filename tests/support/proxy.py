"""Stands between two processes and cuts their connections, at any byte."""
import socket
import threading
from pathlib import Path


class Proxy:
    """Forwards each connection to its path to the server's socket.

    `limit`: connections made while it is set are cut after so many bytes of the server's, and `at_limit` is called before that.
    While `gate` is not set, nothing of the server's goes on. `heard` has what the server has sent on the connection made last.
    """

    def __init__(self, path, target):
        self.path, self.target = Path(path), Path(target)
        self.remote = f"unix:{self.path}"
        self.connections = 0
        self.cuts = 0  # by the limit
        self.limit = None
        self.at_limit = lambda: None
        self.gate = threading.Event()
        self.gate.set()
        self.heard = b""
        self._open = set()
        self._dead = set()
        self._lock = threading.Lock()
        self._listener = socket.socket(socket.AF_UNIX, socket.SOCK_STREAM)
        self._listener.bind(str(self.path))
        self._listener.listen(16)
        threading.Thread(target=self._accept, daemon=True).start()

    def cut(self):
        """Ends all connections; new ones are still taken."""
        with self._lock:
            pairs, self._open = self._open, set()
        for pair in pairs:
            _close(pair)

    def swallow(self):
        """Keeps all connections open and forwards nothing on them any more; new ones are as usual."""
        with self._lock:
            self._dead |= self._open

    def close(self):
        self.gate.set()
        _close((self._listener,))
        self.cut()
        self.path.unlink(missing_ok=True)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.close()

    def _accept(self):
        while True:
            try:
                agent, _ = self._listener.accept()
            except OSError:
                return
            server = socket.socket(socket.AF_UNIX, socket.SOCK_STREAM)
            try:
                server.connect(str(self.target))
            except OSError:
                _close((agent, server))
                continue
            pair = (agent, server)
            with self._lock:
                self._open.add(pair)
            self.connections += 1
            self.heard = b""
            threading.Thread(target=self._pump, args=(agent, server, pair, None), daemon=True).start()
            threading.Thread(target=self._pump, args=(server, agent, pair, self.limit), daemon=True).start()

    def _pump(self, source, sink, pair, left):
        try:
            while left is None or left > 0:
                data = source.recv(1 << 16 if left is None else min(left, 1 << 16))
                if not data:
                    break
                if pair in self._dead:
                    continue
                if source is pair[1]:
                    self.gate.wait()
                    self.heard += data
                sink.sendall(data)
                left = None if left is None else left - len(data)
            if left == 0:
                self.at_limit()
                self.cuts += 1
        except OSError:
            pass
        with self._lock:
            self._open.discard(pair)
        _close(pair)


def _close(sockets):
    for each in sockets:
        try:
            each.shutdown(socket.SHUT_RDWR)
        except OSError:
            pass
        each.close()
