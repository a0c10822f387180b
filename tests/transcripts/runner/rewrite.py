"""Writes what commands did into a transcript, as what is expected from now on."""

import re

from .compare import calls
from .interleave import interleave
from .notation import TranscriptError, encode_line, split_lines
from .transcript import ABSENT, DIRECTORY

_KINDS = {ABSENT: " absent", DIRECTORY: " directory"}


def block_of(command, run, command_line):
    """The lines of a command with what its run did, in place of what they said before."""
    lines = [command_line] + [encode_line("<", line) for line in split_lines(command.typed)]
    pieces = interleave(run.apart.output, run.apart.errors, run.together.output)
    if pieces is None:
        raise TranscriptError(f"{command.line}: together the two streams give something else than apart")
    lines += _fold([encode_line(*piece) for piece in pieces])
    lines.append(f"exit {run.apart.status}")
    for name in list(command.left) + [name for name in run.changed if name not in command.left]:
        quoted = name if name.replace(".", "").replace("/", "").replace("_", "").isalnum() else f'"{name}"'
        content = run.scene.read(name)
        lines.append(f"left {quoted}{_KINDS.get(content, '')}")
        lines += [] if content in _KINDS else [encode_line(">", line) for line in split_lines(content)]
    lines += [f"calls {operation} {calls(run.accounts, operation)}" for operation in command.calls]
    return lines + ([f"simulated {command.simulated}"] if command.simulated else [])


def _fold(lines):
    """Blocks of a few lines that stand there many times are written once."""
    return re.sub(r"((?:[^\n]*\n){1,4}?)\1{9,}", _repeat, "".join(line + "\n" for line in lines)).splitlines()


def _repeat(blocks):
    return f"repeat {len(blocks[0]) // len(blocks[1])}\n{blocks[1]}end\n"
