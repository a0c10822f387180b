"""Runs the commands of a case, each twice: with the streams apart, and with both in one file."""

import dataclasses

from .host_edit import EditError
from .notation import from_bytes, to_bytes
from .scene import Scene, SceneError
from .transcript import STANDARD_ERROR, STANDARD_OUTPUT, Command


@dataclasses.dataclass
class Run:
    """What came of one command. `scene` is as the command left it only until the next command runs."""
    status: object
    status_together: object
    streams: dict
    together: str
    changed: set
    accounts: list
    audited: bool
    scene: object


def replay(case, launcher, directory, host_directories):
    """Gives each command with its Run, one after the other."""
    apart = Scene(directory / "apart", launcher, host_directories)
    together = Scene(directory / "together", launcher, host_directories)
    for step in case.steps:
        if isinstance(step, Command):
            yield step, _run(step, launcher, apart, together)
        else:
            _set(step, apart)
            _set(step, together)


def _set(setting, scene):
    try:
        scene.apply(setting)
    except (SceneError, EditError, OSError) as error:
        raise SceneError(f"{setting.line}: {error}") from error


def _run(command, launcher, apart, together):
    words = [to_bytes(word) for word in command.words]
    typed = to_bytes(command.typed)
    together.start_audit()
    common = launcher.run_together(together.directory, words, typed, together.timeout,
                                   together.directory.parent / "output")
    before = apart.contents()
    apart.start_audit()
    outcome = launcher.run_apart(apart.directory, words, typed, apart.timeout)
    after = apart.contents()
    return Run(
        status=outcome.status,
        status_together=common.status,
        streams={STANDARD_OUTPUT: from_bytes(outcome.output), STANDARD_ERROR: from_bytes(outcome.errors)},
        together=from_bytes(common.output),
        changed={name for name in before.keys() | after.keys() if before.get(name) != after.get(name)},
        accounts=apart.read_audit(),
        audited=apart.audited,
        scene=apart,
    )
