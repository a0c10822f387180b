"""The program for Windows, run under Wine over the simulated host as a COM server, and what differs there."""

import fcntl
import itertools
import os
import pathlib
import re
import shutil
import subprocess

from .notation import TranscriptError, to_bytes

_PASSED_ON = ("HOME", "WINEPREFIX", "WINEARCH", "WINEDEBUG", "WINEDLLOVERRIDES")

# The operating system's wording, and Wine's for the same code.
_SYSTEM_MESSAGES = {
    "The filename, directory name, or volume label syntax is incorrect.": "Invalid name.",
    "The system cannot find the file specified.": "File not found.",
    "More data is available.": "More data available.",
    "Access is denied.": "Access denied.",
}

# What the C runtime here and the one there say of the same error.
_RUNTIME_MESSAGES = {
    "Cannot allocate memory": "Not enough space",
}

# The operations whose calls the host sees there; the others are the operating system's own.
_COUNTED = ("ConnectServer", "ExecMethod")

# Words with an option that reads or changes the registry.
_OF_THE_REGISTRY = re.compile(r"-[A-Za-z]*[oR]")

# Lines that tell of the machine and of the time.
_OF_THE_MACHINE = re.compile(r"^((?:Hostname|Domainname|Time) +=) .*$", re.MULTILINE)


class WindowsProgram:
    """korvex.exe with simhost.dll, which its prefix takes for the WMI locator."""

    def __init__(self, binary, shown):
        self.files = {"korvex.exe": binary, "simhost.dll": binary.with_name("simhost.dll")}
        self._registry_exchange = binary.with_name("registry_exchange.exe")
        self._shown = shown

    def possible(self, steps):
        """Those that do not need what only the simulated machine has: as a setting, nothing behind it can be had."""
        before = itertools.takewhile(lambda step: getattr(step, "word", "") != "simulated", steps)
        return (step for step in before if not getattr(step, "simulated", ""))

    def words(self, directory, words):
        return shutil.which("wine"), [b"wine", str(directory / "korvex.exe").encode(), *map(_to_wine, words[1:])]

    def environment(self):
        return {"LC_ALL": "C.UTF-8"} | {name: os.environ[name] for name in _PASSED_ON if name in os.environ}

    def enter(self, directory, words):
        if not any(_OF_THE_REGISTRY.match(word) for word in words[1:]):
            return lambda: None
        # One registry serves all runs of the prefix.
        lock = open(pathlib.Path(os.environ["WINEPREFIX"], "korvex.lock"), "w", encoding="ascii")
        fcntl.flock(lock, fcntl.LOCK_EX)
        self._exchange("enter", directory)

        def leave():
            with lock:
                self._exchange("leave", directory)
        return leave

    def _exchange(self, action, directory):
        ended = subprocess.run(["wine", self._registry_exchange, action], cwd=directory, stdin=subprocess.DEVNULL,
                               stderr=subprocess.PIPE, check=False)
        if ended.returncode:
            raise TranscriptError(ended.stderr.decode("utf-8", "replace").strip())

    def shown(self, text, directory):
        text = text.replace("\r\n", "\n").replace("Z:" + str(directory).replace("/", "\\"), self._shown)
        text = text.replace(self._shown + "\\korvex.exe", "korvex")
        for ours, theirs in _SYSTEM_MESSAGES.items():
            text = text.replace(theirs + "\r\n", ours + "\r\n")
        return text

    def comparable(self, text):
        return _OF_THE_MACHINE.sub(r"\1", text)

    def counts(self, operation):
        return operation in _COUNTED

    def must_account(self):
        # A run that never asks for WMI does not load the host.
        return False


def _to_wine(word):
    """A word in UTF-8, which reaches the program in bytes of the ANSI code page, 1252."""
    return b"".join(_BYTES_OF_1252[byte] for byte in to_bytes(word))


_BYTES_OF_1252 = [(bytes([byte]).decode("cp1252", "ignore") or chr(byte)).encode() for byte in range(256)]
