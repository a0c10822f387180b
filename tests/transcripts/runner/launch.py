"""Starts the program; the only place that knows how that is done."""

import dataclasses
import os
import pathlib
import shutil
import signal
import subprocess

PROGRAM = "korvex"
_PASSED_ON = ("PATH", "ASAN_OPTIONS", "LSAN_OPTIONS", "TSAN_OPTIONS")


@dataclasses.dataclass
class Outcome:
    """What a run gave: its exit status (None when it was stopped for taking too long) and its output."""
    status: object
    output: bytes
    errors: bytes


class Launcher:
    """Runs one binary from directories of its own."""

    def __init__(self, binary):
        self._binary = pathlib.Path(binary).resolve()

    def lay(self, directory):
        """Puts the binary into a directory: it looks for its host beside itself."""
        try:
            os.link(self._binary, directory / PROGRAM)
        except OSError:
            shutil.copy2(self._binary, directory / PROGRAM)

    def run_apart(self, directory, words, typed, timeout):
        """Runs with a pipe for each stream."""
        process = self._start(directory, words, subprocess.PIPE, subprocess.PIPE)
        return _finish(process, typed, timeout)

    def run_together(self, directory, words, typed, timeout, path):
        """Runs with both streams in one file, as `2>&1` into a file gives; the file is `output` of what is returned."""
        with open(path, "w+b") as file:
            outcome = _finish(self._start(directory, words, file, file), typed, timeout)
            file.seek(0)
            return Outcome(outcome.status, file.read(), b"")

    def _start(self, directory, words, output, errors):
        environment = {name: os.environ[name] for name in _PASSED_ON if name in os.environ}
        environment |= {"LC_ALL": "C", "UBSAN_OPTIONS": "print_stacktrace=1"}
        return subprocess.Popen(words, executable=directory / PROGRAM, cwd=directory, env=environment,
                                stdin=subprocess.PIPE, stdout=output, stderr=errors, start_new_session=True)


def _finish(process, typed, timeout):
    try:
        output, errors = process.communicate(typed, timeout)
        return Outcome(process.returncode, output or b"", errors or b"")
    except subprocess.TimeoutExpired:
        os.killpg(process.pid, signal.SIGKILL)
        output, errors = process.communicate()
        return Outcome(None, output or b"", errors or b"")
