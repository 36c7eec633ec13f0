"""Another process that mounts an agent's tree: tree_client, told by the environment variable TREE_CLIENT where it is."""
import os
import queue
import signal
import subprocess
import threading
import time
from pathlib import Path

from .agent import SLOWNESS


class TreeClient:
    """Mounts the paths ("PATH:w" to write). Answers of commands and what it tells of itself come as lines."""

    def __init__(self, address, *paths, reconnect=False, copies=1, prefix=()):
        command = [*prefix, os.environ["TREE_CLIENT"], *(["--reconnect"] if reconnect else [])]
        command += ["--copies", str(copies), str(address), *paths]
        self.told = []
        self._answers = queue.Queue()
        self._process = subprocess.Popen(
            command, stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True, bufsize=1
        )
        self._reader = threading.Thread(target=self._read, daemon=True)
        self._reader.start()

    def _read(self):
        for line in self._process.stdout:
            line = line.rstrip("\n")
            is_answer = line.split(" ")[0] in ("ok", "value", "failed:")
            if is_answer:
                self._answers.put(line)
            else:
                self.told.append(line)

    def ask(self, *words, timeout=20):
        """The answer to a command; of `value` what follows it."""
        self._process.stdin.write(" ".join(map(str, words)) + "\n")
        self._process.stdin.flush()
        answer = self._answers.get(timeout=timeout * SLOWNESS)
        return answer[6:] if answer.split(" ")[0] == "value" else answer

    def ask_all(self, commands, timeout=60):
        """The answers to commands that are not waited for one by one."""
        feeder = threading.Thread(target=self._process.stdin.write, args=("\n".join(commands) + "\n",), daemon=True)
        feeder.start()
        answers = [self._answers.get(timeout=timeout * SLOWNESS) for _ in commands]
        feeder.join()
        return answers

    def await_told(self, words, count=1, timeout=20):
        self.await_that(lambda: sum(words in line for line in self.told) >= count, f"it tells {words!r} {count} times", timeout)

    def await_that(self, holds, what, timeout=20):
        deadline = time.monotonic() + timeout * SLOWNESS
        while not holds():
            if time.monotonic() > deadline:
                raise AssertionError(f"not within {timeout * SLOWNESS} s: {what}; it told {self.told[-20:]}")
            time.sleep(0.01)

    def await_value(self, value, *words, timeout=20):
        """Until the command is answered so."""
        got = []

        def holds():
            got[:] = [self.ask(*words)]
            return got[0] == value

        try:
            self.await_that(holds, words, timeout)
        except AssertionError as error:
            raise AssertionError(f"{words} answers {got}, not {value!r}; {error}") from None

    def dump(self, file):
        """The mounted rows, in the form of vgwd's own dump; what is missing while they are not all announced."""
        answer = self.ask("dump", file)
        return Path(file).read_text(encoding="utf-8") if answer == "ok" else answer

    def counters(self):
        """bytesIn, bytesOut, framesIn, framesOut of its connection."""
        return [int(count) for count in self.ask("counters").split()]

    def pause(self):
        self._process.send_signal(signal.SIGSTOP)

    def resume(self):
        self._process.send_signal(signal.SIGCONT)

    def wait(self, timeout=20):
        """Its exit code, once it has ended by itself."""
        return self._process.wait(timeout=timeout * SLOWNESS)

    def stop(self):
        """Safe to repeat."""
        if self._process.poll() is None:
            self._process.kill()
        self._process.wait(timeout=20)
        self._reader.join(timeout=5)
        self._process.stdin.close()
        self._process.stdout.close()

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.stop()
