"""What the shells complete, typed into each of them on a terminal: commands, and of the running agent paths and attributes."""
import os
import subprocess
from pathlib import Path

from support import ctl
from support.shell import Shell
from vgwctl_samples import BLUE, OVSDB, RED
from vgwctl_test import VgwctlCase, main


class CompletionTest(VgwctlCase):
    def shell(self, name):
        file = self.directory / "_vgwctl"
        script = subprocess.run([ctl.program(), f"--completion={name}"], capture_output=True, text=True, check=True).stdout
        file.write_text(script, encoding="utf-8")
        path = f"{Path(ctl.program()).parent}:{os.environ['PATH']}"
        return self.enterContext(Shell(name, file, {"VGWCTL_DB": self.remote, "PATH": path}))

    def check_words(self, name):
        shell = self.shell(name)
        other = self.remote.replace("/agent/", "/./agent/")
        (self.directory / "recorded").touch()
        for typed, behind in (
            ("wat", "ch "),
            ("get /vgw/cli", "Config"),
            ("set /vgw/cliConfig logS", "yslog"),
            ("get /vgw/cliConfig logSyslog logC", "onsole"),
            ("get --if-exists /vgw/cliConfig logC", "onsole"),
            ("call /vgw/cliConfig re", "set"),
            ("get /vgw -- call /vgw/cliConfig re", "set"),
            ("describe Vgw::LogicalSw", "itch"),
            ("list LogicalSw", "itch"),
            (f"--db {other} get /vgw/ucastMacsR", "emote"),
            (f"--db={other} get /vgw/ucastMacsR", "emote"),
            ("-f json get /vgw/ucastMacsR", "emote"),
            (f"get {OVSDB}/logicalSwitch/{RED[:-1]}{BLUE[-1]}", ""),
            (f"record {self.directory}/record", "ed"),
            ("get /vgw/nothing/a", ""),
        ):
            line, seen = shell.completed(f"vgwctl {typed}")
            self.assertEqual(line.rstrip() if behind == "ed" else line, f"vgwctl {typed}{behind}", seen)
        self.check_choices(shell)

    def check_choices(self, shell):
        for typed, choices in (
            ("wa", ["watch", "wait-until"]),
            (f"get {OVSDB}/logicalSwitch/", [RED, BLUE]),
            ("set /vgw/cliConfig log", ["logConsole", "logSyslog", "logFile"]),
        ):
            line, seen = shell.completed(f"vgwctl {typed}", tabs=3)
            self.assertTrue(line.startswith(f"vgwctl {typed}"), line)
            for choice in choices:
                self.assertIn(choice, seen)

    def test_bash_completes_commands_paths_and_attributes(self):
        self.check_words("bash")

    def test_zsh_completes_commands_paths_and_attributes(self):
        self.check_words("zsh")


if __name__ == "__main__":
    main()
