"""Many readers, slow and rude ones among them."""
import os
import random
import time
from pathlib import Path

import serve_case
from support import attrlog
from support.agent import SLOWNESS, volume
from support.churn import Churn

READERS = 190
STOPPED = 10


class ReadersTest(serve_case.ServeCase):
    def churn_for(self, client, churn, steps):
        for _ in range(steps):
            client.transact(churn.step())

    def fill_until_blocked(self, agent, path):
        """A peer that has asked for the rows and reads no more."""
        peer = attrlog.Peer(path)
        self.addCleanup(peer.close)
        peer.send(attrlog.mount(1, "/vgw"))
        return peer

    def memory(self, agent):
        """Kilobytes that the agent has in memory."""
        status = Path(f"/proc/{agent._process.pid}/status").read_text(encoding="ascii")
        return int(status.split("VmRSS:")[1].split()[0])

    def test_two_hundred_readers_some_of_them_stopped_converge_and_none_holds_up_the_others(self):
        db = self.server()
        generator = self.network(db, remote_macs=20)
        agent = self.agent(db)
        readers = self.client(agent, "/vgw", copies=READERS)
        readers.await_value(str(READERS), "synced", timeout=40)
        stopped = [self.client(agent, "/vgw") for _ in range(STOPPED)]
        for client in stopped:
            client.await_told("synced /vgw")
            client.pause()
        churn = Churn(generator, db.read())
        with db.client() as client:
            self.churn_for(client, churn, volume(100, 35))
            begin = time.monotonic()
            self.await_rows(readers, db.read())
            self.assertLess(time.monotonic() - begin, 5 * SLOWNESS)
            self.churn_for(client, churn, volume(50, 15))
        for client in stopped:
            client.resume()
        tables = db.read()
        for client in stopped[:3] + [readers]:
            self.await_rows(client, tables)
        # Nobody was cut for being slow.
        self.assertEqual([line for client in stopped for line in client.told if "closed" in line], [])

    def test_who_never_reads_costs_its_ring_and_no_more_however_much_changes(self):
        db = self.server()
        generator = self.network(db, remote_macs=2000)
        agent = self.agent(db)
        reader = self.client(agent, "/vgw")
        self.await_rows(reader, db.read())
        deaf = [self.fill_until_blocked(agent, self.socket(agent)) for _ in range(20)]
        churn = Churn(generator, db.read())
        with db.client() as client:
            self.churn_for(client, churn, 100)
            self.await_rows(reader, db.read())
            before = self.memory(agent)
            self.churn_for(client, churn, 600)
        self.await_rows(reader, db.read())
        # 20 rings of 8 blocks are full already; what was owed is marked, not stored.
        self.assertLess(self.memory(agent) - before, 8 * 1024 * SLOWNESS)
        self.assertEqual(len(deaf), 20)

    def test_a_peer_that_sends_without_end_holds_up_nobody(self):
        db = self.server()
        self.network(db, remote_macs=100)
        agent = self.agent(db)
        reader = self.client(agent, "/vgw")
        self.await_rows(reader, db.read())
        flood = attrlog.Peer(self.socket(agent))
        self.addCleanup(flood.close)
        flood.socket.setblocking(False)
        pings = attrlog.link(attrlog.UNMOUNT, b"\0\0\0\7") * 1000
        deadline = time.monotonic() + 2
        slowest = 0
        number = 0
        while time.monotonic() < deadline:
            for _ in range(20):
                try:
                    flood.socket.send(pings)
                except BlockingIOError:
                    break
            number += 1
            if number % 200 == 0:
                begin = time.monotonic()
                db.vtep_ctl("set", "Physical_Switch", "tor-1", f"description=at-{number}")
                (switch,) = self.switches(reader, "tor-1")
                reader.await_value(f"'at-{number}'", "get", switch, "desc")
                slowest = max(slowest, time.monotonic() - begin)
        self.assertLess(slowest, 1 * SLOWNESS)

    def switches(self, reader, name):
        rows = "/vgw/status/ovsdb/physicalSwitchRaw"
        names = [one.strip("'") for one in reader.ask("list", "/vgw/status/ovsdb", "physicalSwitchRaw").split()]
        return [f"{rows}/{one}" for one in names if reader.ask("get", f"{rows}/{one}", "displayName") == f"'{name}'"]

    def test_a_reader_that_is_killed_amid_its_mount_is_forgotten(self):
        db = self.server()
        self.network(db, remote_macs=2000)
        agent = self.agent(db)
        watcher = self.client(agent, "/vgw/sessions")
        watcher.await_told("synced")
        chance = random.Random(self.seed)
        for _ in range(30):
            client = self.client(agent, "/vgw")
            time.sleep(chance.random() * 0.02)
            client.stop()
        watcher.await_that(lambda: len(watcher.ask("list", "/vgw/sessions", "entry").split()) == 1, "only the watcher is left")
        descriptors = os.listdir(f"/proc/{agent._process.pid}/fd")
        self.assertLess(len(descriptors), 40)


if __name__ == "__main__":
    serve_case.main()
