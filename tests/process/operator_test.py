"""What operators mistype, and what else goes wrong around vgwctl: it is told, in words, and nothing is left behind."""
import json
import os
import resource
import signal
import socket
import subprocess
import threading
import time

import vgwctl_test
from support import attrlog, ctl
from support.agent import SLOWNESS
from vgwctl_samples import BLUE, OVSDB, RED, insert


class OperatorCase(vgwctl_test.VgwctlCase):
    def assert_told(self, words, code, told, said=""):
        done = self.run_ctl(*words)
        self.assertEqual((done.returncode, done.stdout, done.stderr), (code, said, f"vgwctl: {told}\n" if told else ""), words)

    def shell(self, script):
        """The exit code of vgwctl in a script where $CTL is it, and all that is said on standard error."""
        environment = {**os.environ, "CTL": ctl.program(), "VGWCTL_DB": self.remote, "DIR": str(self.directory)}
        done = subprocess.run(
            ["bash", "-c", script], env=environment, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, timeout=30 * SLOWNESS
        )
        return done.returncode, done.stderr.decode()


class OutputTest(OperatorCase):
    WORDS = ("show", "get /vgw/config restartSyncLimit", "-f json list LogicalSwitch", "watch /vgw/config", "--help", "--man")

    def test_what_a_full_disk_does_not_take_is_told(self):
        for words in self.WORDS:
            self.assertEqual(
                self.shell(f'"$CTL" {words} >/dev/full'), (1, "vgwctl: standard output: No space left on device\n"), words
            )

    def test_what_nobody_takes_is_told(self):
        for words in self.WORDS:
            self.assertEqual(
                self.shell(f'"$CTL" {words} >&-'), (1, "vgwctl: standard output: Bad file descriptor\n"), words
            )

    def test_who_stops_reading_is_told_nothing(self):
        many = " -- ".join(["show"] * 50)
        self.assertEqual(self.shell(f'"$CTL" {many} | head -1; exit ${{PIPESTATUS[0]}}'), (1, ""))

    def test_closed_standard_streams_are_taken_by_nothing(self):
        """What is told would go into the recording."""
        file = self.directory / "closed"
        script = 'exec "$0" "$1" --path=/vgw/config record "$2" 2>&-'
        command = ["bash", "-c", script, ctl.program(), f"--db={self.remote}", str(file)]
        with subprocess.Popen(command, stdin=subprocess.DEVNULL) as recorder:
            try:
                same = lambda: self.run_ctl("--path=/vgw/config", "diff", file, self.remote).returncode == 0
                self.agent.await_that(same, "it records")
                self.agent.kill()
                time.sleep(0.5)  # of which it tells
                self.agent.start()
                self.read("set", "/vgw/config", "restartSyncLimit=82")
                self.agent.await_that(same, "it records again")
            finally:
                recorder.kill()
        self.assertNotIn(b"tried again", file.read_bytes())

    def test_output_that_does_not_block_is_waited_for(self):
        reading, writing = os.pipe()
        os.set_blocking(writing, False)
        command = [ctl.program(), f"--db={self.remote}"] + ["show", "--"] * 1000
        with subprocess.Popen(command, stdout=writing, stderr=subprocess.PIPE) as process:
            os.close(writing)
            time.sleep(0.5)  # until the pipe is full
            with open(reading, "rb") as said:
                self.assertEqual(said.read().count(b"/vgw  Qor::Dir\n"), 1000)
            self.assertEqual((process.wait(), process.stderr.read()), (0, b""))

    def test_control_bytes_never_reach_the_terminal(self):
        self.assert_told(["show", "/vgw/a\033[2J\nb"], 2, "/vgw/a\\x1b[2J\\x0ab does not exist")
        place = self.directory / "hostile.sock"
        with socket.socket(socket.AF_UNIX) as hostile:
            hostile.bind(str(place))
            hostile.listen()

            def refuse():
                peer, _ = hostile.accept()
                peer.sendall(attrlog.hello() + attrlog.link(attrlog.ERROR, attrlog.text("\033[2Jgone\n")))
                peer.recv(65536)
                peer.close()

            thread = threading.Thread(target=refuse)
            thread.start()
            done = ctl.run(f"unix:{place}", "show")
            thread.join()
        self.assertEqual((done.returncode, done.stderr), (1, f"vgwctl: unix:{place}: the peer: \\x1b[2Jgone\\x0a\n"))


class WordsTest(OperatorCase):
    def test_what_does_not_exist_is_not_verified(self):
        self.assert_told(["verify", "/vgw/nothing"], 2, "/vgw/nothing does not exist")

    def test_a_collection_is_told_from_what_does_not_exist(self):
        for command in ("show", "tree", "get", "verify"):
            path = f"{OVSDB}/logicalSwitch"
            self.assert_told([command, path], 1, f"{path} is a collection, and no entity: see list and find")
            self.assert_told([command, f"{OVSDB}/nothing"], 2, f"{OVSDB}/nothing does not exist")

    def test_a_type_of_values_has_no_rows(self):
        for command in ("list", "find", "watch"):
            self.assert_told([command, "U32"], 1, "U32 is a type of values, of no entities")

    def test_a_watch_for_what_never_comes_says_so(self):
        self.assert_told(["-t", 0.3 * SLOWNESS, "watch", "/vgw/nothing"], 3, "/vgw/nothing does not exist yet")
        self.assert_told(["-t", 0.3 * SLOWNESS, "watch", f"{OVSDB}/logicalSwitch", "!initial"], 3, "")
        self.assert_told(["watch", "LogicalSwitch", "vlanBinding"], 2, "no entity of those has an attribute vlanBinding")
        self.assert_told(["watch", "!initial", "LogicalSwitch"], 2, "no entity of those has an attribute LogicalSwitch")

    def test_two_signs_of_equality_are_one_too_many(self):
        why = "a value that begins with = stands between double quotes; for equality one = is enough"
        self.assert_told(["find", "LogicalSwitch", "displayName==red"], 1, f"displayName==red: {why}")
        self.assert_told(["set", "/vgw/config", "restartSyncLimit==5"], 1, f"restartSyncLimit==5: {why}")
        self.assertEqual(self.run_ctl("find", "LogicalSwitch", 'displayName="=red"').returncode, 0)

    def test_options_behind_a_command_are_told_where_they_stand(self):
        for words, option in (
            (["list", "LogicalSwitch", "-f", "json"], "-f"),
            (["show", "-t", "3"], "-t"),
            (["show", "--format=json"], "--format=json"),
        ):
            why = f"{words[0]} has no option {option}; see --help for those of vgwctl, which stand in front of the first command"
            self.assert_told(words, 1, why)

    def test_what_does_not_travel_is_not_set(self):
        self.assert_told(["set", "/vgw/cliConfig", "isNondestructing=true"], 1, "isNondestructing can't be changed")

    def test_members_of_what_is_not_there_are_absent(self):
        self.assert_told(["del", "--if-exists", "/vgw/nothing", "vlanStat:7"], 0, "")
        self.assert_told(["del", "/vgw/nothing", "vlanStat:7"], 2, "/vgw/nothing does not exist")

    def test_a_timeout_beyond_all_clocks_is_none(self):
        for seconds in ("1e30", "99999999999"):
            self.assert_told(["-t", seconds, "get", "/vgw"], 0, "")
        for word in ("nan", "inf", "-1", "soon", ""):
            done = self.run_ctl(f"--timeout={word}", "get", "/vgw")
            self.assertEqual(done.returncode, 1, word)
            self.assertNotIn("00000", done.stderr)

    def test_a_certificate_that_is_not_there_is_told(self):
        with socket.create_server(("127.0.0.1", 0)) as silent:
            remote = f"ssl:127.0.0.1:{silent.getsockname()[1]}"
            done = ctl.run(remote, "-p", "/nowhere/key", "-c", "/nowhere/cert", "-C", "/nowhere/ca", "show")
            self.assertEqual((done.returncode, done.stderr), (1, "vgwctl: /nowhere/cert: No such file or directory\n"))
            self.assert_told(
                ["diff", remote, remote], 1,
                f"{remote} needs a private key (-p), a certificate (-c) and an authority (-C)",
            )


class FilesTest(OperatorCase):
    def test_a_recording_that_is_ended_before_anything_came_leaves_no_file(self):
        file = self.directory / "recording"
        silent = self.directory / "silent"
        with socket.socket(socket.AF_UNIX) as listener:
            listener.bind(str(silent))
            listener.listen()
            for _ in range(2):
                with ctl.Running(f"unix:{silent}", "record", file) as recorder:
                    self.agent.await_that(file.exists, "it begins to record")
                    recorder.send(signal.SIGTERM)
                    self.assertEqual(recorder.code(), -signal.SIGTERM)
                self.assertFalse(file.exists())

    def test_a_recording_of_nothing_leaves_no_file(self):
        file = self.directory / "recording"
        self.assert_told(["--path=/vgw/nothing", "record", file], 2, "/vgw/nothing does not exist")
        self.assertFalse(file.exists())
        done = ctl.run("unix:/nobody", "record", file)
        self.assertEqual((done.returncode, file.exists()), (1, False))
        self.assertEqual(self.run_ctl("-t", 0.3 * SLOWNESS, "record", file).returncode, 0)
        before = file.read_bytes()
        self.assert_told(["record", file], 1, f"{file} exists already")
        self.assertEqual(file.read_bytes(), before)

    def test_a_recording_that_the_disk_does_not_take_ends(self):
        for room in (0, 10000):

            def on_a_small_disk(room=room):
                signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
                resource.setrlimit(resource.RLIMIT_FSIZE, (room, room))

            file = self.directory / f"recording-{room}"
            command = [ctl.program(), f"--db={self.remote}", "record", str(file)]
            done = subprocess.run(
                command, stdin=subprocess.DEVNULL, capture_output=True, timeout=30 * SLOWNESS, preexec_fn=on_a_small_disk
            )
            self.assertEqual((done.returncode, done.stderr.decode()), (1, f"vgwctl: {file}: File too large\n"))
            self.assertFalse(file.exists())

    def test_a_recording_and_an_agent_are_compared_by_what_both_have(self):
        file = self.directory / "recording"
        self.assertEqual(self.run_ctl("-t", 0.5 * SLOWNESS, "--path=/vgw/config", "record", file).returncode, 0)
        self.assert_told(["diff", file, self.remote], 0, "")
        self.read("set", "/vgw/config", "restartSyncLimit=81")
        lines = "- /vgw/config restartSyncLimit = 100\n+ /vgw/config restartSyncLimit = 81\n"
        self.assert_told(["diff", file, self.remote], 4, "", lines)
        whole = self.directory / "whole"
        self.assertEqual(self.run_ctl("-t", 0.5 * SLOWNESS, "record", whole).returncode, 0)
        self.assert_told(["diff", file, whole], 4, "", lines)
        rows = 'path,attribute,before,after\n/vgw/config,restartSyncLimit,100,81\n'
        self.assert_told(["-f", "csv", "diff", file, self.remote], 4, "", rows)
        self.assert_told(["-f", "csv", "--columns=path", "--no-headings", "diff", file, whole], 4, "", "/vgw/config\n")
        self.assert_told(["--path=/vgw/config", "diff", whole, self.remote], 0, "")
        self.assert_told(["--path=/vgw/nothing", "diff", whole, whole], 2, "/vgw/nothing does not exist")
        why = "there is nothing to compare: /vgw/status and /vgw/config have nothing in common"
        self.assert_told(["--path=/vgw/status", "diff", file, self.remote], 1, why)

    def test_an_entity_on_one_side_alone_differs_with_its_class_and_its_values(self):
        file = self.directory / "recording"
        rows = "/vgw/ucastMacsLocal"
        self.assertEqual(self.run_ctl("-t", 0.5 * SLOWNESS, f"--path={rows}", "record", file).returncode, 0)
        self.read("create", f"{rows}/new", "UcastMacsLocal", "00:00:5e:00:53:07", f"logicalSwitch={RED}", "vtepIp=192.0.2.1")
        listed = lambda: "00:00:5e:00:53:07" in self.database.vtep_ctl("list-local-macs", "red")
        self.agent.await_that(listed, "the row is in the database")
        row = self.read("-d", "bare", "--no-headings", "--columns=_path", "find", "UcastMacsLocal").strip()
        done = self.run_ctl("-f", "json", "diff", file, self.remote)
        self.assertEqual(done.returncode, 4, done.stderr)
        self.assertIn([row, "", None, "Vgw::UcastMacsLocal"], json.loads(done.stdout)["data"])
        self.assertIn([row, "vtepIp", None, "192.0.2.1"], json.loads(done.stdout)["data"])
        done = self.run_ctl("diff", self.remote, file)
        self.assertIn(f"- {row} = Vgw::UcastMacsLocal\n", done.stdout)
        self.assertIn(f"- {row} vtepIp = 192.0.2.1\n", done.stdout)

    def test_a_damaged_recording_is_told_from_one_that_is_cut(self):
        file = self.directory / "recording"
        self.assertEqual(self.run_ctl("-t", 0.5 * SLOWNESS, "--path=/vgw/config", "record", file).returncode, 0)
        whole = file.read_bytes()
        header = b"\1" + bytes(8)
        for what, tail, told in (
            ("cut", header + b"\0\0\1\0half", None),
            ("kind", b"\7", "has a chunk of the unknown kind 7"),
            ("length", header + b"\xff\0\0\0", "has a chunk of 4278190080 bytes"),
        ):
            damaged = self.directory / what
            damaged.write_bytes(whole + tail)
            if told:
                self.assert_told(["diff", damaged, file], 1, f"{damaged} is damaged: it {told}")
            else:
                self.assert_told(["diff", damaged, file], 0, "")

    def test_a_socket_without_a_path_is_refused(self):
        self.assert_told(["-t", 0.3 * SLOWNESS, "relay", ""], 1, "expected the path of a socket")


class ReturnTest(OperatorCase):
    def test_what_an_agent_has_no_more_when_it_returns_is_waited_for(self):
        path = f"{OVSDB}/logicalSwitch/{BLUE}"
        with ctl.Running(self.remote, f"--path={path}", "watch", path) as watch:
            self.agent.await_that(lambda: " displayName = blue\n" in watch.said(), "the beginning")
            self.agent.kill()
            with self.database.client() as client:
                gone = ["_uuid", "==", ["uuid", BLUE]]
                client.transact(
                    [
                        {"op": "update", "table": "Physical_Port", "where": [], "row": {"vlan_bindings": ["map", []]}},
                        {"op": "delete", "table": "Logical_Switch", "where": [gone]},
                    ]
                )
            self.agent.start()
            told = f"vgwctl: {path} does not exist; what was shown is kept, and it is tried again\n"
            self.agent.await_that(lambda: told in watch.told() or not watch.is_running(), "it is told")
            self.assertTrue(watch.is_running(), watch.told())
            with self.database.client() as client:
                client.transact([insert("Logical_Switch", BLUE, name="azure")])
            self.agent.await_that(lambda: f"modify {path} displayName = azure\n" in watch.said(), "it is back")


if __name__ == "__main__":
    vgwctl_test.main()
