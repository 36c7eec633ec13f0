"""vgwctl's connections, when the other end does not do what it should: it accepts and says nothing, stops, or is not there."""
import os
import pty
import re
import resource
import signal
import socket
import subprocess
import threading
import time
import unittest
from pathlib import Path

import process_case
from support import attrlog, ctl
from support.agent import SLOWNESS, Agent
from support.certificates import Authority
from support.sockets import listens

# Processor time of a program that starts, connects and waits.
IDLE = 0.3


def listener(place, backlog=16):
    """Listens at a unix path or a port of this machine, and never accepts: whoever connects is not answered."""
    is_port = isinstance(place, int)
    sock = socket.socket(socket.AF_INET if is_port else socket.AF_UNIX)
    if is_port:
        sock.setsockopt(socket.SOL_SOCKET, socket.SO_REUSEADDR, 1)
    sock.bind(("127.0.0.1", place) if is_port else str(place))
    sock.listen(backlog)
    return sock


def busy(*command):
    """The exit code of a command, what it said, and the processor time that it took."""
    with subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT) as process:
        said = process.stdout.read()
        _, status, usage = os.wait4(process.pid, 0)
        process.returncode = os.waitstatus_to_exitcode(status)
    return process.returncode, said.decode(), usage.ru_utime + usage.ru_stime


class LinkCase(process_case.ProcessCase):
    def setUp(self):
        super().setUp()
        self.agent = Agent(
            self.directory / "agent", self.server().remote, "--listen", "tcp:127.0.0.1:0", "--tcp-readers", "--listen",
            f"unix:{self.directory}/agent/vgwd.sock",
        )
        self.addCleanup(self.agent.stop)
        self.agent.start()
        self.agent.await_said("listening on tcp:127.0.0.1:")
        self.port = int(re.search(r"listening on tcp:127.0.0.1:(\d+)", self.agent.said())[1])
        self.agent._command[self.agent._command.index("tcp:127.0.0.1:0")] = f"tcp:127.0.0.1:{self.port}"
        self.path = self.directory / "agent" / "vgwd.sock"
        self.near, self.far = f"unix:{self.path}", f"tcp:127.0.0.1:{self.port}"
        self.agent.await_that(lambda: ctl.run(self.near, "get", "/vgw").returncode == 0, "it serves")

    def await_told(self, running, words, timeout=20):
        deadline = time.monotonic() + timeout * SLOWNESS
        while words not in running.told():
            self.assertTrue(time.monotonic() < deadline and running.is_running(), running.told())
            time.sleep(0.01)

    def await_said(self, running, words, timeout=20):
        deadline = time.monotonic() + timeout * SLOWNESS
        while words not in running.said():
            self.assertTrue(time.monotonic() < deadline and running.is_running(), running.said() + running.told())
            time.sleep(0.01)

    def start_relay(self, remote, *options):
        place = self.directory / "relay.sock"
        relay = self.enterContext(ctl.Running(remote, *options, "relay", place))
        self.agent.await_that(place.exists, "the relay serves")
        return relay, f"unix:{place}"


class RelayTest(LinkCase):
    def check_relay(self, remote, silent_listener):
        """Over an agent's death, with something in its place that does not answer."""
        relay, relayed = self.start_relay(remote)
        before = ctl.read(relayed, "show", "/vgw/config")
        self.agent.kill()
        silent_listener()
        self.await_told(relay, "it is tried again")
        for _ in range(3):
            time.sleep(0.3)
            done = ctl.run(relayed, "show", "/vgw/config", timeout=5)
            self.assertEqual((done.returncode, done.stdout), (0, before), done.stderr)
        return relay, relayed

    def check_return(self, relay, relayed):
        self.agent.start()
        self.await_told(relay, "again")
        ctl.read(self.near, "set", "/vgw/config", "restartSyncLimit=77")
        ctl.read(relayed, "wait-until", "/vgw/config", "restartSyncLimit=77")

    def test_a_relay_serves_while_its_agent_accepts_and_does_not_answer(self):
        silent = []

        def take_the_place():
            self.path.unlink(missing_ok=True)
            silent.append(listener(self.path))

        relay, relayed = self.check_relay(self.near, take_the_place)
        silent[0].close()
        self.check_return(relay, relayed)

    def test_a_relay_serves_while_nobody_answers_its_connecting(self):
        held = []

        def take_the_place():
            held.append(listener(self.port, 0))
            for _ in range(4):  # until its queue is full, and what comes is not answered at all
                waiting = socket.socket()
                waiting.setblocking(False)
                waiting.connect_ex(("127.0.0.1", self.port))
                held.append(waiting)

        relay, relayed = self.check_relay(self.far, take_the_place)
        for one in reversed(held):
            one.close()
        self.check_return(relay, relayed)


@unittest.skipIf(SLOWNESS > 1, "the processor's time is that of the sanitizer, which needs descriptors of its own, too")
class IdleTest(LinkCase):
    def test_a_connection_for_which_there_is_no_descriptor_is_told_so(self):
        with ctl.Running(self.far, "watch", "/vgw/config") as watch:
            self.await_said(watch, "restartSyncLimit")
            resource.prlimit(watch.pid(), resource.RLIMIT_NOFILE, (3, 3))
            self.agent.kill()
            self.await_told(watch, f"{self.far}: Too many open files")

    def assert_idle(self, *words):
        code, said, used = busy(ctl.program(), *map(str, words))
        self.assertLess(used, IDLE, said)
        return code, said

    def test_who_waits_for_a_silent_tls_server_uses_no_processor(self):
        key, certificate = Authority(self.directory / "pki").issue("reader")
        with listener(0) as silent:
            remote = f"ssl:127.0.0.1:{silent.getsockname()[1]}"
            options = ["-p", key, "-c", certificate, "-C", self.directory / "pki" / "authority.pem"]
            for words in (["show"], ["watch"], ["relay", self.directory / "never.sock"]):
                code, said = self.assert_idle(f"--db={remote}", *options, "-t", 2, *words)
                self.assertEqual((code, said), (3, "vgwctl: timeout: the agent has not sent its whole state\n"))

    def test_who_waits_for_a_silent_server_uses_no_processor(self):
        with listener(self.directory / "silent.sock"):
            code, _ = self.assert_idle(f"--db=unix:{self.directory}/silent.sock", "-t", 2, "show")
            self.assertEqual(code, 3)

    def test_who_follows_an_agent_at_rest_uses_no_processor(self):
        for words in (["watch", "/vgw/config"], ["relay", self.directory / "idle.sock"], ["record", self.directory / "recording"]):
            self.assert_idle(f"--db={self.far}", "-t", 2, *words)


    def test_a_relay_that_can_let_nobody_in_uses_no_processor(self):
        place = self.directory / "full.sock"
        script = f'ulimit -n 16; exec "{ctl.program()}" --db={self.near} -t {3 * SLOWNESS} relay "{place}"'
        crowd = threading.Thread(target=self.crowd, args=(place,))
        crowd.start()
        code, said, used = busy("bash", "-c", script)
        crowd.join()
        self.assertEqual((code, said), (0, ""))
        self.assertLess(used, IDLE)

    def crowd(self, place):
        """More readers than it has descriptors for, until it ends."""
        self.agent.await_that(place.exists, "the relay serves")
        peers = [attrlog.Peer(place) for _ in range(20)]
        self.assertIsNotNone(peers[0].mounted(1, "/vgw/config"))
        time.sleep(3 * SLOWNESS)
        for peer in peers:
            peer.close()

    def test_a_relay_whose_reader_does_not_read_uses_no_processor(self):
        place = self.directory / "slow.sock"
        reader = threading.Thread(target=self.read_nothing, args=(place,))
        reader.start()
        code, said, used = busy(ctl.program(), f"--db={self.near}", "-t", str(3 * SLOWNESS), "relay", str(place))
        reader.join()
        self.assertEqual((code, said), (0, ""))
        self.assertLess(used, IDLE)

    def read_nothing(self, place):
        self.agent.await_that(place.exists, "the relay serves")
        peer = attrlog.Peer(place)
        peer.socket.setsockopt(socket.SOL_SOCKET, socket.SO_RCVBUF, 4096)
        for number in range(1000):  # each is answered by its state, or why not
            try:
                peer.socket.settimeout(0.2)
                peer.send(attrlog.mount(number, "/vgw/nothing" * 40))
            except OSError:
                break
        time.sleep(2 * SLOWNESS)
        peer.close()


class TlsTest(process_case.ProcessCase):
    def setUp(self):
        super().setUp()
        self.authority = Authority(self.directory / "pki")
        self.database = self.server()
        files = self.options(*self.authority.issue("agent"))
        self.agent = Agent(
            self.directory / "agent", self.database.remote, "--listen", "pssl:0:127.0.0.1", *files, "--write-cn", "writer"
        )
        self.addCleanup(self.agent.stop)
        self.agent.start()
        self.agent.await_said("listening on ssl:127.0.0.1:", "in step")
        self.remote = "ssl:127.0.0.1:" + re.search(r"listening on ssl:127.0.0.1:(\d+)", self.agent.said())[1]

    def options(self, key, certificate):
        return ["-p", str(key), "-c", str(certificate), "-C", str(self.authority.certificate)]

    def test_it_reads_and_writes_over_tls(self):
        writer = self.options(*self.authority.issue("writer"))
        words = ["set", "/vgw/config", "restartSyncLimit=79", "--", "get", "/vgw/config", "restartSyncLimit"]
        done = ctl.run(self.remote, *writer, *words)
        self.assertEqual((done.returncode, done.stdout, done.stderr), (0, "79\n", ""))

    def test_why_it_is_refused_over_tls_is_told(self):
        reader = self.options(*self.authority.issue("reader"))
        done = ctl.run(self.remote, *reader, "set", "/vgw/config", "restartSyncLimit=79")
        self.assertEqual((done.returncode, done.stderr), (1, "vgwctl: /vgw/config may only be read\n"))
        stranger = self.options(*Authority(self.directory / "other", "other").issue("stranger"))
        done = ctl.run(self.remote, *stranger, "show")
        self.assertEqual((done.returncode, done.stderr), (1, f"vgwctl: {self.remote}: TLS: tlsv1 alert unknown ca\n"))
        nobody = self.options(*self.authority.issue("", "nobody", "/O=nobody"))
        done = ctl.run(self.remote, *nobody, "show")
        told = f"vgwctl: {self.remote}: the peer: the certificate has no common name\n"
        self.assertEqual((done.returncode, done.stderr), (1, told))

    def insert_switches(self, turn):
        row = lambda n: {"name": f"{turn}-{n}", "description": "long " * 100}
        with self.database.client() as client:
            client.transact([{"op": "insert", "table": "Logical_Switch", "row": row(n)} for n in range(4000)])

    def test_a_relay_over_tls_has_all_that_comes_at_once(self):
        """Megabytes: many records of TLS, and several turns of the session."""
        files = self.options(*self.authority.issue("reader"))
        place, part = self.directory / "relay.sock", "--path=/vgw/status/ovsdb"
        with ctl.Running(self.remote, *files, part, "relay", place) as relay:
            self.agent.await_that(lambda: listens(place) or not relay.is_running(), "the relay serves")
            for turn in range(3):
                self.insert_switches(turn)
                find = (part, "--columns=displayName", "find", "LogicalSwitch", f"displayName={turn}-3999")
                has_all = lambda: f"{turn}-3999" in ctl.run(f"unix:{place}", *find).stdout
                self.agent.await_that(has_all, relay.told())
            done = ctl.run(self.remote, *files, part, "diff", f"unix:{place}", self.remote)
            self.assertEqual((done.returncode, done.stdout, done.stderr), (0, "", ""))


class SilentAgentTest(LinkCase):
    def stop_agent(self):
        self.agent._process.send_signal(signal.SIGSTOP)
        self.addCleanup(self.agent._process.send_signal, signal.SIGCONT)

    def test_over_a_network_an_agent_that_stops_is_told_and_left_for_another_connection(self):
        with ctl.Running(self.far, "--probe=0.5", "watch", "/vgw/config") as watch:
            self.await_said(watch, "initial")
            self.stop_agent()
            self.await_told(watch, f"{self.far} has said nothing for 1 s; what was shown is kept, and it is tried again\n")
            self.agent._process.send_signal(signal.SIGCONT)
            self.await_told(watch, f"connected to {self.far} again\n")

    def test_on_this_machine_an_agent_that_stops_is_told_and_waited_for(self):
        with ctl.Running(self.near, "--probe=0.5", "watch", "/vgw/config") as watch:
            self.await_said(watch, "initial")
            self.stop_agent()
            self.await_told(watch, f"{self.near} has said nothing for 1 s; it is waited for\n")
            time.sleep(1.2)
            self.agent._process.send_signal(signal.SIGCONT)
            self.await_told(watch, f"{self.near} is heard of again\n")
            ctl.read(self.near, "set", "/vgw/config", "restartSyncLimit=78")
            self.await_said(watch, "restartSyncLimit = 78")
            self.assertEqual(watch.told().count("\n"), 2, watch.told())

    def test_on_a_terminal_what_is_told_stands_on_a_line_of_its_own(self):
        self.stop_agent()
        process, terminal = pty.fork()
        if process == 0:
            os.execv(ctl.program(), [ctl.program(), f"--db={self.near}", "-t", "2", "--probe=0.4", "watch"])
        said = b""
        with open(terminal, "rb", buffering=0) as opened:
            try:
                while got := opened.read(4096):
                    said += got
            except OSError:
                pass  # the end
        os.waitpid(process, 0)
        self.assertIn(b"\r/vgw: 0.0 MB, 0 records\033[K", said)
        self.assertIn(b"\r\033[Kvgwctl: " + self.near.encode() + b" has said nothing for 0.8 s; it is waited for\r\n", said)

    def test_an_agent_that_answers_is_asked_without_a_word(self):
        with ctl.Running(self.far, "--probe=0.2", "watch", "/vgw") as watch:
            self.await_said(watch, "initial /vgw/sessions/")
            time.sleep(2.5)
            before = watch.said()
            time.sleep(2.5)
            self.assertEqual((watch.said()[len(before) :], watch.told()), ("", ""))

    def test_the_kernel_asks_after_an_agents_machine(self):
        with ctl.Running(self.far, "--probe=0", "watch", "/vgw/config") as watch:
            self.await_said(watch, "initial")
            far = f"0100007F:{self.port:04X}"
            rows = [line.split() for line in Path("/proc/net/tcp").read_text(encoding="ascii").splitlines()]
            # A timer of the kind 2 that has up to a minute left is the keep-alive.
            timers = [row[5] for row in rows if row[2] == far and row[3] == "01"]
            self.assertTrue(timers)
            for timer in timers:
                kind, left = timer.split(":")
                self.assertEqual(kind, "02")
                self.assertLessEqual(int(left, 16), 61 * os.sysconf("SC_CLK_TCK"))


if __name__ == "__main__":
    process_case.main()
