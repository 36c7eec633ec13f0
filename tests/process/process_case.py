"""What each test of processes has: a directory of its own, a server, a seeded network."""
import os
import random
import tempfile
import unittest
from pathlib import Path

from support import older_schema, ovs
from support.churn import Churn
from support.generator import Generator
from support.lab import Server

SEED = int(os.environ.get("VGW_SEED") or random.randrange(1 << 32))
SCHEMAS = {"packaged": lambda schema: schema, "older": older_schema.older}


def schema(name):
    return SCHEMAS[name](ovs.packaged_schema())


class ProcessCase(unittest.TestCase):
    """A failure prints the seed; VGW_SEED=n repeats it."""

    maxDiff = None

    def setUp(self):
        directory = tempfile.TemporaryDirectory(prefix="vgw-")
        self.addCleanup(directory.cleanup)
        self.directory = Path(directory.name)
        self.seed = SEED

    def server(self, of_schema=None, name="server"):
        """A running server, stopped after the test."""
        server = Server(self.directory / name, of_schema)
        self.addCleanup(server.stop)
        return server.start()

    def network(self, server, odd=False, **sizes):
        """Fills the server's database; the generator that did it."""
        generator = Generator(server.columns, self.seed, odd)
        with server.client() as client:
            generator.fill(client, **sizes)
        return generator

    def churn(self, server, generator, steps):
        churn = Churn(generator, server.read())
        with server.client() as client:
            for _ in range(steps):
                client.transact(churn.step())


def main():
    print(f"seed {SEED}", flush=True)
    unittest.main(verbosity=2)
