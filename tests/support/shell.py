"""An interactive shell on a terminal of its own, to see what a person gets who types and asks for completion."""
import fcntl
import os
import pty
import re
import shutil
import struct
import subprocess
import termios
import time

from .agent import SLOWNESS

SHELLS = {
    # How it is started, and told to print its line and clear it when control-t is typed, and to say when it is set up. A key that
    # clears it could be taken by the terminal itself, while the shell prints. What is typed is echoed: hence the quotes in a word.
    "bash": (
        ["bash", "--norc", "--noprofile", "-i"],
        "bind 'set bell-style none'; bind -x '\"\\C-t\": printf \"\\n<<%s>>\\n\" \"$READLINE_LINE\"; READLINE_LINE='; source FILE; PS1=;"
        "echo SET''UP",
    ),
    "zsh": (
        ["zsh", "-f", "-i"],
        "fpath=(FOLDER $fpath); autoload -U compinit; compinit -u -D; unsetopt beep; PS1=; RPS1=;"
        "told() { print -r -- $'\\n'\"<<$BUFFER>>\"; BUFFER=; }; zle -N told; bindkey '^T' told; echo SET''UP",
    ),
}


class Shell:
    """REQUIRES: the shell is installed. `file` has the completion, by the name that the shell looks it up by."""

    def __init__(self, name, file, environment):
        command, self._setup = SHELLS[name]
        self._setup = self._setup.replace("FILE", str(file)).replace("FOLDER", str(file.parent))
        self._own, far = pty.openpty()
        fcntl.ioctl(far, termios.TIOCSWINSZ, struct.pack("HHHH", 50, 1000, 0, 0))
        self._process = subprocess.Popen(
            [shutil.which(command[0]), *command[1:]],
            stdin=far,
            stdout=far,
            stderr=far,
            env=dict(os.environ, TERM="dumb", **environment),
            start_new_session=True,
            preexec_fn=lambda: fcntl.ioctl(0, termios.TIOCSCTTY, 0),
        )
        os.close(far)
        os.set_blocking(self._own, False)
        self._seen = ""

    def __enter__(self):
        self._send(self._setup + "\n")
        self._await(lambda: "SETUP" in self._read(), "it is set up")
        return self

    def completed(self, typed, tabs=1):
        """The line behind so many tabs, and all that was printed for it."""
        self._seen = ""
        line = self._ask(typed + "\t" * tabs)
        return line, self._seen

    def _ask(self, typed):
        """Types, and has the line told and cleared."""
        already = len(self._seen)
        self._send(typed + "\x14")
        told = re.compile(r"<<(.*?)>>")
        self._await(lambda: told.search(self._read(), already), f"the line behind {typed!r}")
        return told.search(self._seen, already)[1]

    def _send(self, text):
        os.write(self._own, text.encode())

    def _read(self):
        try:
            self._seen += os.read(self._own, 65536).decode("utf-8", "replace")
        except BlockingIOError:
            pass
        return self._seen

    def _await(self, holds, what, timeout=20):
        deadline = time.monotonic() + timeout * SLOWNESS
        while not holds():
            if time.monotonic() > deadline:
                raise AssertionError(f"not within {timeout * SLOWNESS} s: {what}; on the terminal: {self._seen[-1000:]!r}")
            time.sleep(0.01)

    def __exit__(self, *_):
        self._process.kill()
        self._process.wait(timeout=20)
        os.close(self._own)
