"""Starts the program; the only place that knows how that is done."""

import os
import pathlib
import shutil
import subprocess
from collections import namedtuple

from .notation import to_bytes
from .windows import WindowsProgram

PROGRAM = "korvex"
SHOWN = "C:\\korvex"  # what stands for the program's directory where it is named
_PASSED_ON = ("PATH", "ASAN_OPTIONS", "LSAN_OPTIONS", "TSAN_OPTIONS")

# The exit status of a run (None when it was stopped for taking too long), and what it printed.
Outcome = namedtuple("Outcome", "status output errors")


class NativeProgram:
    """The program of this system, over the simulated machine that it brings along."""

    def __init__(self, binary):
        self.files = {PROGRAM: binary}

    def possible(self, steps):
        """Those steps of a case that can be carried out here."""
        return steps

    def words(self, directory, words):
        """What is started, and the words that it is given, in bytes."""
        return directory / PROGRAM, [to_bytes(word) for word in words]

    def environment(self):
        return {"LC_ALL": "C", "UBSAN_OPTIONS": "print_stacktrace=1"}

    def enter(self, directory, words):
        """Whatever has to be done before a command and, as the function that is given back, after it."""
        return lambda: None

    def shown(self, text, directory):
        """What was printed, with SHOWN for the program's directory."""
        return text.replace(str(directory).replace("/", "\\"), SHOWN)

    def comparable(self, text):
        """A text without what differs from one machine to the next."""
        return text

    def must_account(self):
        """Whether each run that ends of itself has the host account for it."""
        return True

    def counts(self, operation):
        """Whether the host tells how often this operation was called."""
        return True


class Launcher:
    """Runs one binary from directories of its own, each run for so many seconds at most."""

    def __init__(self, binary, timeout):
        binary = pathlib.Path(binary).resolve()
        self._timeout = timeout
        self.program = WindowsProgram(binary, SHOWN) if binary.suffix == ".exe" else NativeProgram(binary)

    def lay(self, directory):
        """Puts the binary into a directory: it looks for its host beside itself."""
        for name, source in self.program.files.items():
            try:
                os.link(source, directory / name)
            except OSError:
                shutil.copy2(source, directory / name)

    def run(self, directory, words, typed="", together=False):
        """Runs with a pipe for each stream; `together`, with one pipe for both, which gives `output` alone."""
        environment = {name: os.environ[name] for name in _PASSED_ON if name in os.environ} | self.program.environment()
        executable, started = self.program.words(directory, words)
        leave = self.program.enter(directory, words)
        try:
            ended = subprocess.run(started, executable=executable, cwd=directory,
                                   env=environment, input=to_bytes(typed), stdout=subprocess.PIPE,
                                   stderr=subprocess.STDOUT if together else subprocess.PIPE, timeout=self._timeout)
        except subprocess.TimeoutExpired:
            return Outcome(None, "", "")
        finally:
            leave()
        return Outcome(ended.returncode, *(self.program.shown((stream or b"").decode("latin-1"), directory.resolve())
                                           for stream in (ended.stdout, ended.stderr)))
