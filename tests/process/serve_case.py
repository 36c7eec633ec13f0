"""What the tests of a served tree share: an agent beside a server, and readers of its tree."""
import time

import process_case
from support import projection
from support.agent import SLOWNESS, Agent, difference
from support.tree_client import TreeClient


def told_rows(rows):
    """What a reader has of the rows of a projection. What the model can't hold is told in no row."""
    return {**rows, "lost": []}


class ServeCase(process_case.ProcessCase):
    def agent(self, server, *options, name="agent"):
        agent = Agent(self.directory / name, server.remote if server else None, *options)
        self.addCleanup(agent.stop)
        return agent.start()

    def socket(self, agent):
        return agent.directory / "vgwd.sock"

    def client(self, agent, *paths, **options):
        client = TreeClient(self.socket(agent), *paths, **options)
        self.addCleanup(client.stop)
        return client

    def await_rows(self, client, tables, timeout=30):
        """Until the reader's copy is what the tables say; the seconds that it took."""
        return self.await_told_rows(client, projection.project(tables), timeout)

    def await_told_rows(self, client, rows, timeout=30):
        """The same, of what the tables' projection is."""
        begin = time.monotonic()
        expected = projection.one_line(told_rows(rows))
        while True:
            text = client.dump(self.directory / "client.json")
            if projection.in_one_line(text) == expected:
                return time.monotonic() - begin
            if time.monotonic() - begin > timeout * SLOWNESS:
                raise AssertionError(f"after {timeout * SLOWNESS} s: {difference(expected, text)}; {client.told[-5:]}")
            time.sleep(0.05)

    def await_rest(self, client, quiet=1.5, timeout=20):
        """Until nothing has gone over its connection for so many seconds."""
        deadline = time.monotonic() + timeout * SLOWNESS
        last, since = client.counters(), time.monotonic()
        while time.monotonic() - since < quiet:
            now = client.counters()
            if now != last:
                last, since = now, time.monotonic()
            if time.monotonic() > deadline:
                raise AssertionError(f"the link does not come to rest: {now}")
            time.sleep(0.05)


main = process_case.main
