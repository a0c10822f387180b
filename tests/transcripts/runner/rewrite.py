"""Writes what commands did into a transcript, as what is expected from now on."""

from .audit import calls
from .interleave import interleave
from .notation import encode_line, hide_pointers, split_lines
from .transcript import ABSENT, DIRECTORY, MARKS, STANDARD_ERROR, STANDARD_OUTPUT, Piece

_KINDS = {ABSENT: " absent", DIRECTORY: " directory"}
_LONGEST_REPEATED_BLOCK = 4
_FEWEST_REPEATS = 10


def block_of(command, run, source_lines):
    """The lines of a command with what its run did, in place of what they said before."""
    lines = [source_lines[command.first]]
    lines += [encode_line("<", line) for line in split_lines(command.typed)]
    pieces = interleave(run.streams, run.together) or _apart(run)
    lines += _fold([encode_line(MARKS[piece.stream], piece.text) for piece in pieces])
    lines.append(f"exit {run.status}")
    for name in list(command.left) + sorted(run.changed - set(command.left)):
        lines += _left(name, run.scene.read(name))
    lines += [f"calls {operation} {calls(run.accounts, operation)}" for operation in command.calls]
    return lines


def _apart(run):
    """No common order can be told: one stream after the other, for the reviewer to see."""
    return [Piece(stream, hide_pointers(line)) for stream in (STANDARD_OUTPUT, STANDARD_ERROR)
            for line in split_lines(run.streams[stream])]


def _left(name, content):
    quoted = name if name.replace(".", "").replace("/", "").replace("_", "").isalnum() else f'"{name}"'
    if content in _KINDS:
        return [f"left {quoted}{_KINDS[content]}"]
    return [f"left {quoted}"] + [encode_line(">", line) for line in split_lines(content)]


def _fold(lines):
    """Blocks of a few lines that stand there many times are written once."""
    folded = []
    at = 0
    while at < len(lines):
        length, count = max(((n, _repeats(lines, at, n)) for n in range(1, _LONGEST_REPEATED_BLOCK + 1)),
                            key=lambda found: found[0] * (found[1] - 1))
        if count >= _FEWEST_REPEATS:
            folded += [f"repeat {count}", *lines[at:at + length], "end"]
            at += length * count
        else:
            folded.append(lines[at])
            at += 1
    return folded


def _repeats(lines, at, length):
    """How often the `length` lines at `at` stand there one behind the other."""
    block = lines[at:at + length]
    count = 1
    while len(block) == length and lines[at + count * length:at + (count + 1) * length] == block:
        count += 1
    return count
