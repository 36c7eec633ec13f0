"""vgwctl against a running vgwd: every command in every format, against what it printed when it was last looked at.

After a wanted change: VGW_GOLDEN=write, with the environment that ctest gives, and read the difference.
"""
import os
import re
import signal
import subprocess
import time
from pathlib import Path

import process_case
from support import ctl
from support.agent import SLOWNESS, Agent
from support.sockets import listens
from vgwctl_samples import BLUE, COMMANDS, FORMATS, IN_EVERY_FORMAT, NETWORK, OVSDB, RED

GOLDEN = Path(__file__).parent / "golden" / "vgwctl.txt"
GOLDEN_FORMATS = GOLDEN.with_name("vgwctl_formats.txt")


class VgwctlCase(process_case.ProcessCase):
    def setUp(self):
        super().setUp()
        self.database = self.server()
        with self.database.client() as client:
            client.transact([{"op": "insert", "table": "Global", "row": {}}])
            client.transact(NETWORK)
        self.agent = Agent(self.directory / "agent", self.database.remote)
        self.addCleanup(self.agent.stop)
        self.agent.start()
        self.agent.await_said("in step")
        self.remote = f"unix:{self.agent.directory / 'vgwd.sock'}"

    def run_ctl(self, *words):
        return ctl.run(self.remote, *words)

    def read(self, *words):
        return ctl.read(self.remote, *words)


class GoldenTest(VgwctlCase):
    def masked(self, text):
        text = text.replace(str(self.directory), "DIR")
        text = re.sub(r"\b\d{10}\.\d+", "TIME", text)
        text = re.sub(r"(responseTimeForLastMsg\W+)[-+.e\d]+", r"\1SECONDS", text)
        text = re.sub(r"\b[0-9a-f]{8}(-[0-9a-f]{4}){3}-(?!0{11})[0-9a-f]{12}\b", "GLOBAL", text)
        return re.sub(r"\b[0-9a-f]{16}\b", "A-DIGEST-OF-ROWS", text)

    def run_beside_a_session(self, *words):
        """The agent writes once a second who is there: who has just come may be missing, who has gone may stand there. So the
        rows of one kind are taken for one, and a session that stays is waited for."""
        deadline = time.monotonic() + 20 * SLOWNESS
        with ctl.Running(self.remote, "watch", "/vgw/config"):
            done = self.run_ctl(*words)
            while "overUnix" not in done.stdout and time.monotonic() < deadline:
                time.sleep(0.1)
                done = self.run_ctl(*words)
        for row in (
            r"overUnix +peerWrites +false\n",
            r"overUnix,peerWrites,false\n",
            r"link +: overUnix\nright +: peerWrites\nsilent +: false\n\n?",
            r'\["overUnix","peerWrites",false\],?',
        ):
            done.stdout = re.sub(f"(?:{row})*({row})", r"\1", done.stdout)
        return done

    def section(self, words):
        slow = [str(float(word) * SLOWNESS) if before == "-t" else word for before, word in zip([""] + words, words)]
        done = self.run_ctl(*slow) if "sessions" not in words else self.run_beside_a_session(*slow)
        shown = " ".join(word if re.fullmatch(r"[^\s'\"]+", word) else f"'{word}'" for word in words)
        return self.masked(f"$ vgwctl {shown}\n{done.stdout}{done.stderr}-> {done.returncode}\n")

    def check(self, golden, sections):
        printed = "\n".join(sections)
        if os.environ.get("VGW_GOLDEN") == "write":
            golden.write_text(printed, encoding="utf-8")
        self.assertEqual(golden.read_text(encoding="utf-8"), printed)

    def test_every_command_prints_what_it_printed(self):
        self.check(GOLDEN, (self.section(words) for words in COMMANDS))

    def in_format(self, form, words):
        places = {"DIR": str(self.directory), "AGENT": self.remote, "FORMAT": form}
        words = [re.sub("|".join(places), lambda found: places[found[0]], word) for word in words]
        return self.section(["-f", form, *words])

    def test_every_command_prints_in_every_format_or_refuses_it(self):
        self.check(GOLDEN_FORMATS, (self.in_format(form, words) for words in IN_EVERY_FORMAT for form in FORMATS))

    def test_of_several_commands_none_is_run_when_one_is_not_understood(self):
        for wrong in (["explode"], ["get"], ["get", "--may-exist", "/vgw"]):
            done = self.run_ctl("set", "/vgw/config", "restartSyncLimit=70", "--", *wrong)
            self.assertEqual(done.returncode, 1)
            self.assertEqual(self.read("get", "/vgw/config", "restartSyncLimit"), "100\n")
        self.assertEqual(self.run_ctl("-f", "csv", "set", "/vgw/config", "restartSyncLimit=70", "--", "show").returncode, 1)
        self.assertEqual(self.read("get", "/vgw/config", "restartSyncLimit"), "100\n")

    def test_the_usage_tells_where_commands_stand(self):
        usage = "Usage: vgwctl [OPTION]... COMMAND [ARGUMENT]... [-- COMMAND [ARGUMENT]...]..."
        self.assertIn(usage, ctl.run(self.remote, "--help").stdout.splitlines())

    def test_every_command_that_the_help_names_is_run_in_every_format(self):
        told = re.findall(r"^  (?:\[--\S+\] )*([a-z]\S*)", ctl.run(self.remote, "--help").stdout.split("COMMANDS:")[1], re.MULTILINE)
        run = {word for words in IN_EVERY_FORMAT for word in words}
        self.assertEqual([name for name in told if name not in run], [])
        self.assertIn("relay", told)


class FollowingTest(VgwctlCase):
    def await_said(self, running, words, what):
        deadline = time.monotonic() + 20 * SLOWNESS
        while words not in running.said():
            if time.monotonic() > deadline or not running.is_running():
                self.fail(f"{what}: {running.said()[-2000:]} {running.told()[-2000:]}")
            time.sleep(0.01)

    def test_watch_prints_what_the_database_changes(self):
        with ctl.Running(self.remote, "watch", "LogicalSwitch") as watch:
            self.await_said(watch, "initial", "the beginning")
            self.database.vtep_ctl("set", "Logical_Switch", "red", "tunnel_key=6001")
            self.await_said(watch, f"modify {OVSDB}/logicalSwitch/{RED} tunnelKey = 6001\n", "the change")
            self.database.vtep_ctl("add-ls", "green")
            self.await_said(watch, " displayName = green\n", "the row")
            self.database.vtep_ctl("del-ls", "green")
            self.await_said(watch, f"delete {OVSDB}/logicalSwitch/", "the removal")

    def test_watch_reconnects_for_ever_says_so_and_prints_differences_only(self):
        with ctl.Running(self.remote, "watch", OVSDB) as watch:
            self.await_said(watch, f"initial {OVSDB}/logicalSwitch/{BLUE} tunnelKey = 16777216\n", "the beginning")
            before = watch.said()
            self.agent.kill()
            self.database.vtep_ctl("set", "Logical_Switch", "blue", "tunnel_key=6002")
            self.await_told(watch, "it is tried again")
            self.agent.start()
            self.await_said(watch, f"modify {OVSDB}/logicalSwitch/{BLUE} tunnelKey = 6002\n", "the difference")
            self.await_told(watch, "connected to")
            changes = [line for line in watch.said()[len(before) :].splitlines()]
            self.assertEqual(changes, [f"modify {OVSDB}/logicalSwitch/{BLUE} tunnelKey = 6002"])

    def await_told(self, running, words):
        deadline = time.monotonic() + 20 * SLOWNESS
        while words not in running.told():
            self.assertTrue(time.monotonic() < deadline and running.is_running(), running.told())
            time.sleep(0.01)

    def test_watch_ends_with_who_reads_it(self):
        with ctl.Running(self.remote, "watch", "LogicalSwitch") as watch:
            self.await_said(watch, "initial", "the beginning")
            watch._process.stdout.close()
            self.database.vtep_ctl("set", "Logical_Switch", "red", "tunnel_key=6003")
            self.assertEqual(watch.code(), 1)
            watch._process.stdout = open(os.devnull, "rb")

    def test_wait_until_ends_when_it_comes(self):
        path = f"{OVSDB}/logicalSwitch/{RED}"
        with ctl.Running(self.remote, "wait-until", path, "tunnelKey=7777") as waiting:
            time.sleep(0.2)
            self.assertTrue(waiting.is_running())
            self.database.vtep_ctl("set", "Logical_Switch", "red", "tunnel_key=7777")
            self.assertEqual(waiting.code(), 0)

    def test_record_replay_and_diff_agree(self):
        recording = self.directory / "recording"
        with ctl.Running(self.remote, "-t", 600, "record", recording):
            deadline = time.monotonic() + 20 * SLOWNESS
            while self.run_ctl("diff", recording, self.remote).returncode != 0:
                self.assertLess(time.monotonic(), deadline)
                time.sleep(0.05)
            self.database.vtep_ctl("set", "Logical_Switch", "blue", "tunnel_key=6004")
            while " tunnelKey = 6004" in self.run_ctl("diff", recording, self.remote).stdout or (
                self.run_ctl("get", f"{OVSDB}/logicalSwitch/{BLUE}", "tunnelKey").stdout != "6004\n"
            ):
                self.assertLess(time.monotonic(), deadline)
                time.sleep(0.05)
        self.database.vtep_ctl("set", "Logical_Switch", "blue", "tunnel_key=6005")
        self.read("wait-until", f"{OVSDB}/logicalSwitch/{BLUE}", "tunnelKey=6005")
        done = self.run_ctl("diff", recording, self.remote)
        self.assertEqual(done.returncode, 4)
        row = f"{OVSDB}/logicalSwitch/{BLUE} tunnelKey"
        # The recorder's own session may stand in the recording: the agent writes once a second who is there.
        changes = [line for line in done.stdout.splitlines() if not line[2:].startswith("/vgw/sessions/")]
        self.assertEqual(changes, [f"- {row} = 6004", f"+ {row} = 6005"])
        self.check_replay(recording)

    def check_replay(self, recording):
        socket = self.directory / "replay.sock"
        with ctl.Running(self.remote, "replay", recording, socket, 0) as replay:
            deadline = time.monotonic() + 20 * SLOWNESS
            key = ""
            while key != "6004\n":
                self.assertTrue(time.monotonic() < deadline and replay.is_running(), replay.told())
                key = ctl.run(f"unix:{socket}", "get", f"{OVSDB}/logicalSwitch/{BLUE}", "tunnelKey").stdout
            self.assertEqual(socket.stat().st_mode & 0o777, 0o600)
            done = ctl.run(f"unix:{socket}", "set", "/vgw/cliConfig", "managerPort=1")
            self.assertEqual((done.returncode, done.stderr), (1, "vgwctl: /vgw/cliConfig may only be read\n"))

    def test_it_has_none_of_the_classes_that_it_shows(self):
        needed = subprocess.run(["readelf", "-d", ctl.program()], capture_output=True, text=True, check=True).stdout
        self.assertIn("libqor.so.0", needed)
        self.assertNotIn("Statemart", needed)

    def start_relay(self, name):
        socket = self.directory / name
        relay = self.enterContext(ctl.Running(self.remote, "relay", socket))
        deadline = time.monotonic() + 20 * SLOWNESS
        while not listens(socket):
            self.assertTrue(time.monotonic() < deadline and relay.is_running(), relay.told())
            time.sleep(0.01)
        return relay, f"unix:{socket}"

    def test_a_relay_that_is_ended_leaves_no_socket(self):
        for number, ending in ((signal.SIGTERM, -15), (signal.SIGINT, -2), (signal.SIGHUP, -1)):
            # One that is ignored here, as behind nohup, would be ignored there.
            self.addCleanup(signal.signal, number, signal.signal(number, signal.SIG_DFL))
            relay, remote = self.start_relay("ended")
            relay.send(number)
            self.assertEqual(relay.code(), ending)
            self.assertFalse(Path(remote[5:]).exists())

    def test_the_socket_of_a_killed_relay_is_replaced(self):
        relay, remote = self.start_relay("killed")
        relay.kill()
        self.assertTrue(Path(remote[5:]).exists())
        self.enterContext(ctl.Running(self.remote, "relay", remote[5:]))
        self.agent.await_that(lambda: ctl.run(remote, "get", "/vgw").returncode == 0, "another serves there")

    def test_a_relay_leaves_alone_what_is_no_socket_of_its_own(self):
        _, remote = self.start_relay("taken")
        (self.directory / "file").write_text("kept")
        for name, why in (("taken", "another program listens there"), ("file", "there is something that is no socket")):
            done = self.run_ctl("relay", self.directory / name)
            self.assertEqual((done.returncode, done.stderr), (1, f"vgwctl: {self.directory / name}: {why}\n"))
        self.assertEqual((self.directory / "file").read_text(), "kept")
        self.assertEqual(ctl.read(remote, "get", "/vgw/cliConfig", "managerPort"), "6632\n")

    def test_of_two_relays_that_start_at_one_place_one_is_refused(self):
        for turn in range(5):
            relay, remote = self.start_relay(f"both{turn}")
            relay.kill()
            both = [self.enterContext(ctl.Running(self.remote, "relay", remote[5:])) for _ in range(2)]
            self.agent.await_that(lambda: sum(one.is_running() for one in both) == 1, "one of them ends")
            (refused,) = [one for one in both if not one.is_running()]
            self.assertIn("another program listens there", refused.told())
            self.agent.await_that(lambda: ctl.run(remote, "get", "/vgw").returncode == 0, "the other serves")

    def test_the_whole_chain_converges_through_relays_and_deaths(self):
        _, first = self.start_relay("first")
        self.agent_remote, self.remote = self.remote, first
        _, second = self.start_relay("second")
        row = f"{OVSDB}/logicalSwitch/{BLUE}"
        with ctl.Running(second, "watch", row) as watch:
            self.await_said(watch, "initial", "the beginning")
            beginning = watch.said()
            self.database.vtep_ctl("set", "Logical_Switch", "blue", "tunnel_key=7001")
            self.await_said(watch, f"modify {row} tunnelKey = 7001\n", "the change over two relays")
            self.database.kill()
            self.database.start()
            self.database.vtep_ctl("set", "Logical_Switch", "blue", "tunnel_key=7002")
            self.await_said(watch, f"modify {row} tunnelKey = 7002\n", "the change behind the server's death")
            self.agent.kill()
            self.database.vtep_ctl("set", "Logical_Switch", "blue", "tunnel_key=7003")
            self.agent.start()
            self.await_said(watch, f"modify {row} tunnelKey = 7003\n", "the change behind the agent's death")
            heard = watch.said()[len(beginning) :].splitlines()
            self.assertEqual([line for line in heard if not re.search(r" tunnelKey = 700[123]$", line)], [])
        self.assertEqual(ctl.run(second, "verify", "/vgw/status").returncode, 0)
        done = ctl.run(second, "--path=/vgw/status/ovsdb", "diff", second, self.agent_remote)
        self.assertEqual((done.returncode, done.stdout), (0, ""))

    def test_an_agent_that_is_not_there_is_named(self):
        done = ctl.run(f"unix:{self.directory}/nobody", "show")
        self.assertEqual(done.returncode, 1)
        self.assertEqual(done.stderr, f"vgwctl: unix:{self.directory}/nobody: No such file or directory\n")

    def test_create_and_del_reach_the_database(self):
        path = "/vgw/ucastMacsLocal/new"
        self.read("create", path, "UcastMacsLocal", "00:00:5e:00:53:07", f"logicalSwitch={RED}", "vtepIp=192.0.2.1")
        listed = lambda: "00:00:5e:00:53:07 -> vxlan_over_ipv4/192.0.2.1" in self.database.vtep_ctl("list-local-macs", "red")
        self.agent.await_that(listed, "the row is in the database")
        done = self.run_ctl("-d", "bare", "--no-headings", "--columns=_path", "find", "UcastMacsLocal")
        created = done.stdout.strip()
        self.assertTrue(created.startswith("/vgw/ucastMacsLocal/"), done)
        self.read("del", created)
        self.agent.await_that(lambda: not listed(), "the row is gone from the database")

    def test_set_changes_what_the_agent_does(self):
        self.read("set", "/vgw/cliConfig", "managerIp=192.0.2.1", "managerPort=6632")
        self.agent.await_that(
            lambda: self.database.vtep_ctl("get-manager").strip() == "ssl:192.0.2.1:6632", "the manager is set"
        )
        self.read("call", "/vgw/cliConfig", "reset")
        self.assertEqual(self.read("get", "/vgw/cliConfig", "enableAgent"), "false\n")


main = process_case.main

if __name__ == "__main__":
    main()
