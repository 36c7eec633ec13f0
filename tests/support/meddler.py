"""Stands between an agent and its database, and meddles with the transactions."""
import json
import socket

from .proxy import Proxy
from .rpc import Framer


class Meddler(Proxy):
    """A proxy that reads what the agent sends.

    `meddle(operations)`, when set, is asked about each transaction. It answers None: it goes on; "hold": it is kept in `held`, and
    not answered; "cut": the connection ends instead; or a result that is answered in the server's stead.
    """

    def __init__(self, path, target):
        self.meddle = None
        self.held = []
        self._askers = []  # of those that are held
        super().__init__(path, target)

    def carry_out(self, message):
        """Has the server carry out a transaction that was held; its result."""
        with socket.socket(socket.AF_UNIX, socket.SOCK_STREAM) as server:
            server.settimeout(20)
            server.connect(str(self.target))
            server.sendall(json.dumps(message).encode())
            framer = Framer()
            while True:
                for answer in framer.feed(server.recv(1 << 16)):
                    return answer["result"]

    def hold(self, message, agent):
        self._askers.append((message, agent))
        self.held.append(message)

    def answer(self, message, result):
        """Answers one that was held."""
        asker = next(agent for held, agent in self._askers if held is message)
        asker.sendall(json.dumps({"id": message["id"], "error": None, "result": result}).encode())

    def _pump(self, source, sink, pair, left):
        super()._pump(_Reading(self, source) if source is pair[0] else source, sink, pair, left)


class _Reading:
    """The agent's end, of which only whole messages are received, and of transactions those that go on."""

    def __init__(self, meddler, agent):
        self._meddler, self._agent = meddler, agent
        self._framer = Framer()

    def recv(self, size):
        while True:
            data = self._agent.recv(size)
            if not data:
                return data
            passed = [json.dumps(message) for message in self._framer.feed(data) if self._goes_on(message)]
            if passed:
                return "".join(passed).encode()

    def _goes_on(self, message):
        if message.get("method") != "transact" or self._meddler.meddle is None:
            return True
        verdict = self._meddler.meddle(message["params"][1:])
        if verdict is None:
            return True
        if verdict == "hold":
            self._meddler.hold(message, self._agent)
        elif verdict == "cut":
            raise OSError("cut on purpose")
        else:
            self._agent.sendall(json.dumps({"id": message["id"], "error": None, "result": verdict}).encode())
        return False
