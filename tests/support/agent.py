"""The program under test, as a child process: vgwd, told by the environment variable VGWD where it is."""
import json
import os
import re
import signal
import subprocess
import time
from pathlib import Path

from . import projection

# How much slower than the release build this build is.
SLOWNESS = float(os.environ.get("VGW_SLOWNESS", "1"))


def volume(plain, otherwise):
    """How much is gone through: of each, many times as dear, there is less under a sanitizer."""
    return plain if SLOWNESS == 1 else otherwise


def program():
    return os.environ["VGWD"]


def once(remote, directory, form="json", timeout=60):
    """`vgwd --once`: the finished process, its output as text."""
    command = [program(), "--ovsdb", remote, "--run-dir", str(directory), "--once", "-f", form]
    return subprocess.run(
        command, capture_output=True, text=True, encoding="utf-8", stdin=subprocess.DEVNULL, timeout=timeout * SLOWNESS
    )


class Agent:
    """A running vgwd. What it says is in `said` (standard error) and, with watch, in `heard` (standard output).

    Without a remote it has a server of its own.
    """

    def __init__(self, directory, remote, *options, watch=False):
        self.directory = Path(directory)
        self.directory.mkdir(parents=True, exist_ok=True)
        self.dump_file = self.directory / "dump.json"
        self.pid_file = self.directory / "vgwd.pid"
        self._is_form_judged = False
        self._said = self.directory / "said"
        self._heard = self.directory / "heard"
        self._command = [program(), *(["--ovsdb", remote] if remote else []), "--run-dir", str(self.directory)]
        self._command += ["--dump-file", str(self.dump_file), "--pidfile", str(self.pid_file), *options]
        self._command += ["--watch"] if watch else []
        self._process = None

    def start(self):
        """Returns once it takes signals."""
        self.pid_file.unlink(missing_ok=True)
        with open(self._said, "ab") as said, open(self._heard, "ab") as heard:
            self._process = subprocess.Popen(self._command, stdin=subprocess.DEVNULL, stdout=heard, stderr=said)
        self.await_that(lambda: self.pid_file.exists() or not self.is_running(), "vgwd writes its pid file")
        if not self.is_running():
            raise RuntimeError(f"vgwd ended with {self._process.returncode}: {self.said()}")
        return self

    def is_running(self):
        return self._process is not None and self._process.poll() is None

    def stop(self):
        """Asks it to end; its exit code. Safe to repeat."""
        return self._end(signal.SIGTERM)

    def kill(self):
        return self._end(signal.SIGKILL)

    def pid(self):
        return self._process.pid

    def busy(self):
        """The seconds of processor time that it has used."""
        fields = Path(f"/proc/{self._process.pid}/stat").read_text(encoding="ascii").rsplit(") ", 1)[1].split()
        return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")

    def said(self):
        return self._said.read_text(encoding="utf-8", errors="replace")

    def heard(self):
        return self._heard.read_text(encoding="utf-8", errors="replace").splitlines()

    def heard_of_rows(self):
        """What --watch printed of the mirror, without the status and the session's books."""
        return [line for line in self.heard() if not re.search(r" /vgw/status(/ovsdbSessionStatus)?\.", line)]

    def heard_value(self, place):
        """What --watch printed last of that attribute; None if nothing."""
        values = [line.split(" -> ")[-1] for line in self.heard() if f" {place} " in line]
        return values[-1] if values else None

    def dump_text(self, timeout=30):
        """The mirror as it is now."""
        self.dump_file.unlink(missing_ok=True)
        self._process.send_signal(signal.SIGUSR1)
        self.await_that(lambda: self.dump_file.exists() or not self.is_running(), "vgwd writes its dump", timeout)
        return self.dump_file.read_text(encoding="utf-8")

    def await_equal(self, tables, timeout=30):
        """Until the dump is the tables' projection; the seconds that it took."""
        return self.await_rows(projection.project(tables), timeout)

    def await_rows(self, rows, timeout=30):
        """The same, of what the tables' projection is. The form of the first dump that is equal is judged too."""
        begin = time.monotonic()
        expected = projection.one_line(rows)
        while True:
            text = self.dump_text()
            if projection.in_one_line(text) == expected:
                break
            if time.monotonic() - begin > timeout * SLOWNESS:
                raise AssertionError(f"after {timeout * SLOWNESS} s: {difference(expected, text)}\n{self.said()[-2000:]}")
            time.sleep(0.02)
        took = time.monotonic() - begin
        if not self._is_form_judged and text != projection.canonical_text(rows):
            raise AssertionError(f"the same values, but not the same text\n{text[:2000]}")
        self._is_form_judged = True
        return took

    def await_said(self, *words, timeout=20):
        """Until standard error holds all the words."""
        self.await_that(lambda: all(word in self.said() for word in words), f"vgwd says {words}", timeout)

    def await_heard(self, words, timeout=20):
        """Until standard output holds the words."""
        self.await_that(lambda: any(words in line for line in self.heard()), f"vgwd --watch prints {words!r}", timeout)

    def await_that(self, holds, what, timeout=20):
        deadline = time.monotonic() + timeout * SLOWNESS
        while not holds():
            if time.monotonic() > deadline:
                raise AssertionError(f"not within {timeout * SLOWNESS} s: {what}; it said: {self.said()[-2000:]}")
            time.sleep(0.01)

    def __enter__(self):
        return self.start()

    def __exit__(self, *_):
        self.stop()

    def _end(self, number):
        if self._process is None:
            return None
        if self.is_running():
            self._process.send_signal(number)
        return self._process.wait(timeout=30 * SLOWNESS)


def difference(expected, got):
    """The first places at which two dumps differ."""
    try:
        got = json.loads(got)
    except ValueError as error:
        return f"no JSON: {error}"
    places = list(_differences("", json.loads(expected), got))
    return "\n".join([f"{len(places)} differences"] + places[:8])


def _differences(path, expected, got):
    if isinstance(expected, dict) and isinstance(got, dict):
        for key in sorted(expected.keys() | got.keys()):
            yield from _differences(f"{path}/{key}", expected.get(key, "(absent)"), got.get(key, "(absent)"))
    elif expected != got:
        yield f"{path}: expected {str(expected)[:200]}, got {str(got)[:200]}"
