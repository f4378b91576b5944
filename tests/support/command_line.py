"""Test cases that run vexa as a user does: in a folder of its own, through pipes or a terminal."""

import os
import pty
import resource
import select
import signal
import subprocess
import tempfile
import time
import unittest
from pathlib import Path

from runner import vexa_path

LIMIT = 60  # seconds until a command counts as hanging

# The superuser may read every file; the same without that right.
WITHOUT_PRIVILEGE = ([] if os.geteuid() else
                     ["setpriv", "--bounding-set=-dac_override,-dac_read_search"])


def sanitized():
    """Whether vexa is built with checks of addresses, which take the whole address space."""
    return b"__asan_init" in Path(vexa_path()).read_bytes()


class CommandLineTest(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="vexa-test-")
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)

    def write(self, name, data):
        path = self.folder / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(data if isinstance(data, bytes) else data.encode())
        return name

    def environment(self, changes=None):
        environment = dict(os.environ, LC_ALL="C.UTF-8", HOME=str(self.folder), TERM="xterm")
        for name in ("NO_COLOR", "XDG_STATE_HOME", "XDG_CONFIG_HOME"):
            environment.pop(name, None)
        environment.update(changes or {})
        return environment

    def vexa(self, *arguments, stdin=b"", environment=None, memory=None, wrapper=(),
             **options):
        """Runs vexa, through a wrapper command if there is one, and gives the completed process;
        memory bounds its address space."""
        def bound():
            resource.setrlimit(resource.RLIMIT_AS, (memory, memory))

        if isinstance(stdin, (bytes, str)):
            options["input"] = stdin if isinstance(stdin, bytes) else stdin.encode()
        else:
            options["stdin"] = stdin
        options.setdefault("stdout", subprocess.PIPE)
        return subprocess.run([*wrapper, vexa_path(), *arguments], stderr=subprocess.PIPE,
                              timeout=LIMIT, cwd=self.folder, env=self.environment(environment),
                              preexec_fn=bound if memory and not sanitized() else None, **options)

    def check(self, done, out=b"", err=b"", status=0):
        """Compares both streams and the status, byte for byte."""
        out, err = (text if isinstance(text, bytes) else text.encode() for text in (out, err))
        self.assertEqual((done.stdout, done.stderr, done.returncode), (out, err, status))

    def terminal(self, *arguments, environment=None, out=None):
        environment = self.environment(environment)
        # The editing library never frees the names of added functions.
        environment["ASAN_OPTIONS"] = environment.get("ASAN_OPTIONS", "") + ":detect_leaks=0"
        terminal = Terminal(arguments, self.folder, environment, out)
        self.addCleanup(terminal.close)
        return terminal


class Terminal:
    """vexa on a terminal; with `out` its stdout goes into that file."""

    def __init__(self, arguments, folder, environment, out=None):
        self.seen = b""
        self.status = None
        self.process, self.master = pty.fork()
        if self.process == 0:
            os.chdir(folder)
            if out:
                os.dup2(os.open(out, os.O_WRONLY | os.O_CREAT), 1)
            os.execve(vexa_path(), [vexa_path(), *arguments], environment)

    def send(self, text):
        os.write(self.master, text if isinstance(text, bytes) else text.encode())

    def read(self):
        ready, _, _ = select.select([self.master], [], [], 0.1)
        if not ready:
            return False
        try:
            piece = os.read(self.master, 65536)
        except OSError:  # the other end has gone
            return False
        self.seen += piece.replace(b"\r\n", b"\n")
        return bool(piece)

    def expect(self, text):
        """Waits for a text and forgets everything up to its end; gives what was before it."""
        text = text if isinstance(text, bytes) else text.encode()
        end = time.monotonic() + LIMIT
        while text not in self.seen:
            if not self.read() and (self.ended() or time.monotonic() > end):
                raise AssertionError(f"{text!r} did not appear, but {self.seen!r}")
        before, _, self.seen = self.seen.partition(text)
        return before

    def ended(self):
        if self.status is None:
            process, status = os.waitpid(self.process, os.WNOHANG)
            if process:
                self.status = os.waitstatus_to_exitcode(status)
        return self.status is not None

    def wait(self):
        """Waits for the end and gives the exit status, or minus the signal."""
        end = time.monotonic() + LIMIT
        while not self.ended():
            self.read()
            if time.monotonic() > end:
                raise AssertionError(f"no end in sight after {self.seen!r}")
        while self.read():
            pass
        return self.status

    def close(self):
        if self.status is None:
            os.kill(self.process, signal.SIGKILL)
            os.waitpid(self.process, 0)
        os.close(self.master)
