"""The directory that a case runs in: the binary, its host and what else stands beside it."""

import json
import shutil

from .host_edit import edit, merge_patch
from .notation import TranscriptError, to_bytes
from .transcript import ABSENT, DIRECTORY, split_words

HOST = "host.json"
AUDIT = "host.audit"
STATE = "host.state.jsonl"
KEPT_REGISTRY = "host.registry.kept"  # where the system's own registry is carried from one run to the next


class Scene:
    """One directory, made afresh; the settings of a transcript change it."""

    def __init__(self, directory, launcher, host_directories):
        shutil.rmtree(directory, ignore_errors=True)
        directory.mkdir(parents=True)
        launcher.lay(directory)
        self.directory = directory
        self.program = launcher.program
        self._launcher = launcher
        self._host_directories = host_directories

    def apply(self, word, text, content=""):
        """Carries out a setting: `text` is all behind its word, `content` that of a file."""
        setting = getattr(self, f"_set_{word}", None)
        if not setting:
            raise TranscriptError(f"unknown setting '{word}'")
        try:
            setting(text, *([content] if word == "file" else []))
        except (OSError, ValueError) as error:
            raise TranscriptError(str(error)) from error

    def run(self, words, typed="", together=False):
        """Runs a command; gives its outcome and the host's accounts of it."""
        (self.directory / AUDIT).write_bytes(b"")
        outcome = self._launcher.run(self.directory, words, typed, together)
        return outcome, [json.loads(line) for line in (self.directory / AUDIT).read_text().splitlines()]

    def read(self, name):
        """What stands under a name: its content, DIRECTORY or ABSENT."""
        path = self._path(name)
        if path.is_dir():
            return DIRECTORY
        return path.read_bytes().decode("latin-1") if path.is_file() else ABSENT

    def contents(self):
        """All that stands in the directory and is not the scenery itself, by name."""
        names = [str(path.relative_to(self.directory)) for path in self.directory.rglob("*")]
        return {name: self.read(name) for name in names
                if name not in (*self.program.files, HOST, AUDIT) and not name.startswith((STATE, "host.registry"))}

    def _path(self, name):
        path = self.directory / to_bytes(name).decode("utf-8", "surrogateescape")
        if not path.resolve().is_relative_to(self.directory.resolve()):
            raise TranscriptError(f"{name} is not in the transcript's directory")
        return path

    def _named(self, text):
        words = split_words(text)
        if len(words) != 1:
            raise TranscriptError("one name is needed")
        return self._path(words[0])

    def _set_simulated(self, reason):
        if not reason:
            raise TranscriptError("what only the simulated machine has must be said")

    def _set_host(self, name):
        self._forget_registry()
        if name == "none":
            (self.directory / HOST).unlink(missing_ok=True)
            return
        found = [path for path in (directory / f"{name}.json" for directory in self._host_directories) if path.is_file()]
        if len(found) != 1:
            raise TranscriptError(f"host {name}: {len(found)} descriptions found")
        shutil.copyfile(found[0], self.directory / HOST)

    def _set_patch(self, text):
        self._write_host(merge_patch(self._read_host(), json.loads(text)))

    def _set_edit(self, text):
        host = self._read_host()
        if text.endswith(" removed"):
            edit(host, text.removesuffix(" removed"), ABSENT)
        else:
            pointer, _, value = text.partition(" = ")
            edit(host, pointer, json.loads(value))
        self._write_host(host)

    def _read_host(self):
        return json.loads((self.directory / HOST).read_text())

    def _forget_registry(self):
        (self.directory / KEPT_REGISTRY).unlink(missing_ok=True)

    def _write_host(self, host):
        if host.get("registry") != self._read_host().get("registry"):
            self._forget_registry()
        (self.directory / HOST).write_text(json.dumps(host, indent=2) + "\n")

    def _set_file(self, text, content):
        path = self._named(text)
        if path.name == STATE:
            self._forget_registry()
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(to_bytes(content))

    def _set_directory(self, text):
        self._named(text).mkdir(parents=True)

    def _set_remove(self, text):
        path = self._named(text)
        if path.name == STATE:
            self._forget_registry()
        if path.is_dir():
            shutil.rmtree(path)
        else:
            path.unlink()
