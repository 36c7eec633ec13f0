"""vgwctl, told by the environment variable VGWCTL where it is."""
import os
import subprocess

from .agent import SLOWNESS


def program():
    return os.environ["VGWCTL"]


def run(remote, *words, timeout=30):
    """The finished process, its output as text."""
    command = [program(), f"--db={remote}", "-t", str(timeout * SLOWNESS), *map(str, words)]
    return subprocess.run(
        command, capture_output=True, text=True, encoding="utf-8", stdin=subprocess.DEVNULL, timeout=2 * timeout * SLOWNESS
    )


def read(remote, *words):
    """What it prints. Raises when it fails."""
    done = run(remote, *words)
    if done.returncode != 0:
        raise AssertionError(f"vgwctl {words}: {done.returncode}: {done.stderr}")
    return done.stdout


class Running:
    """A vgwctl that goes on until it is ended, and what it prints."""

    def __init__(self, remote, *words):
        self._command = [program(), f"--db={remote}", *map(str, words)]
        self._process = None
        self._said = b""

    def __enter__(self):
        self._process = subprocess.Popen(
            self._command, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE
        )
        os.set_blocking(self._process.stdout.fileno(), False)
        os.set_blocking(self._process.stderr.fileno(), False)
        self._told = b""
        return self

    def said(self):
        """All of standard output up to now."""
        self._said += self._process.stdout.read() or b""
        return self._said.decode("utf-8", "replace")

    def told(self):
        """All of standard error up to now."""
        self._told += self._process.stderr.read() or b""
        return self._told.decode("utf-8", "replace")

    def is_running(self):
        return self._process.poll() is None

    def pid(self):
        return self._process.pid

    def kill(self):
        self._process.kill()
        self._process.wait(timeout=30 * SLOWNESS)

    def send(self, number):
        """A signal."""
        self._process.send_signal(number)

    def code(self):
        return self._process.wait(timeout=30 * SLOWNESS)

    def __exit__(self, *_):
        if self.is_running():
            self._process.kill()
        self._process.wait(timeout=30 * SLOWNESS)
        self._process.stdout.close()
        self._process.stderr.close()
