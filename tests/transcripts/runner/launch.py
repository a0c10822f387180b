"""Starts the program; the only place that knows how that is done."""

import os
import pathlib
import shutil
import subprocess
from collections import namedtuple

from .notation import to_bytes

PROGRAM = "korvex"
_PASSED_ON = ("PATH", "ASAN_OPTIONS", "LSAN_OPTIONS", "TSAN_OPTIONS")

# The exit status of a run (None when it was stopped for taking too long), and what it printed.
Outcome = namedtuple("Outcome", "status output errors")


class Launcher:
    """Runs one binary from directories of its own, each run for so many seconds at most."""

    def __init__(self, binary, timeout):
        self._binary = pathlib.Path(binary).resolve()
        self._timeout = timeout

    def lay(self, directory):
        """Puts the binary into a directory: it looks for its host beside itself."""
        try:
            os.link(self._binary, directory / PROGRAM)
        except OSError:
            shutil.copy2(self._binary, directory / PROGRAM)

    def run(self, directory, words, typed="", together=False):
        """Runs with a pipe for each stream; `together`, with one pipe for both, which gives `output` alone."""
        environment = {name: os.environ[name] for name in _PASSED_ON if name in os.environ}
        environment |= {"LC_ALL": "C", "UBSAN_OPTIONS": "print_stacktrace=1"}
        try:
            ended = subprocess.run([to_bytes(word) for word in words], executable=directory / PROGRAM, cwd=directory,
                                   env=environment, input=to_bytes(typed), stdout=subprocess.PIPE,
                                   stderr=subprocess.STDOUT if together else subprocess.PIPE, timeout=self._timeout)
        except subprocess.TimeoutExpired:
            return Outcome(None, "", "")
        return Outcome(ended.returncode, ended.stdout.decode("latin-1"), (ended.stderr or b"").decode("latin-1"))
