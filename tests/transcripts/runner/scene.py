"""The directory that a case runs in: the binary, its host and what else stands beside it."""

import copy
import json
import shutil

from .host_edit import edit, merge_patch
from .launch import PROGRAM
from .notation import from_bytes, to_bytes
from .transcript import ABSENT, DIRECTORY

HOST = "host.json"
AUDIT = "host.audit"
STATE = "host.state.jsonl"


class SceneError(Exception):
    """A setting that cannot be carried out."""


class Scene:
    """One directory, made afresh; settings change it and `changes` tells what a command has changed."""

    def __init__(self, directory, launcher, host_directories):
        shutil.rmtree(directory, ignore_errors=True)
        directory.mkdir(parents=True)
        launcher.lay(directory)
        self.directory = directory
        self.timeout = 20.0
        self.audited = True
        self._host_directories = host_directories
        self._host = None

    def apply(self, setting):
        getattr(self, f"_set_{setting.word}")(setting.value)

    def read(self, name):
        """What stands under a name: its content, DIRECTORY or ABSENT."""
        path = self._path(name)
        if path.is_dir():
            return DIRECTORY
        return from_bytes(path.read_bytes()) if path.is_file() else ABSENT

    def contents(self):
        """All that stands in the directory and is not the scenery itself, by name."""
        names = (str(path.relative_to(self.directory)) for path in self.directory.rglob("*"))
        return {name: self.read(name) for name in names if not self._is_scenery(name)}

    def start_audit(self):
        """Asks the host for an account of the next run."""
        (self.directory / AUDIT).write_bytes(b"")

    def read_audit(self):
        """The accounts that the host has written since start_audit."""
        return [json.loads(line) for line in (self.directory / AUDIT).read_text().splitlines()]

    @staticmethod
    def _is_scenery(name):
        return name in (PROGRAM, HOST, AUDIT) or name.startswith(STATE)

    def _path(self, name):
        path = self.directory / to_bytes(name).decode("utf-8", "surrogateescape")
        if not path.resolve().is_relative_to(self.directory.resolve()):
            raise SceneError(f"{name} is not in the transcript's directory")
        return path

    def _write_host(self, document):
        self._host = document
        (self.directory / HOST).write_text(json.dumps(document, indent=2) + "\n")

    def _described_host(self):
        if self._host is None:
            raise SceneError("no host stands there to be changed")
        return copy.deepcopy(self._host)

    def _host_file(self, name):
        found = [path for path in (directory / f"{name}.json" for directory in self._host_directories) if path.is_file()]
        if len(found) != 1:
            raise SceneError(f"host {name}: {len(found)} descriptions found")
        return found[0]

    def _set_host(self, name):
        if name == "none":
            (self.directory / HOST).unlink(missing_ok=True)
            self._host = None
            return
        text = self._host_file(name).read_text()
        (self.directory / HOST).write_text(text)
        self._host = json.loads(text)

    def _set_patch(self, patch):
        self._write_host(merge_patch(self._described_host(), copy.deepcopy(patch)))

    def _set_edit(self, pointer_and_value):
        host = self._described_host()
        pointer, value = pointer_and_value
        edit(host, pointer, copy.deepcopy(value) if value is not ABSENT else ABSENT)
        self._write_host(host)

    def _set_file(self, name_and_content):
        name, content = name_and_content
        path = self._path(name)
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(to_bytes(content))

    def _set_directory(self, name):
        self._path(name).mkdir(parents=True)

    def _set_remove(self, name):
        path = self._path(name)
        if path.is_dir():
            shutil.rmtree(path)
        else:
            path.unlink()

    def _set_audit(self, _):
        self.audited = False

    def _set_timeout(self, seconds):
        self.timeout = seconds
