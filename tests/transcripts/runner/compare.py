"""Runs a command and holds what it did against what the transcript says."""

import difflib
from collections import namedtuple

from .audit import audit_problems
from .interleave import interleave
from .notation import encode_line, hide_pointers, matches, split_lines
from .transcript import ABSENT, DIRECTORY, STANDARD_ERROR, STANDARD_OUTPUT, STREAMS

_KINDS = {ABSENT: "nothing", DIRECTORY: "a directory"}

# What came of one command, run with its streams apart and together; the scene is as it left it until the next one runs.
Run = namedtuple("Run", "apart together accounts changed scene")


def run_twice(command, apart, together):
    """Runs a command in one scene with a pipe for each stream and in the other with one for both."""
    common, _ = together.run(command.words, command.typed, together=True)
    before = apart.contents()
    outcome, accounts = apart.run(command.words, command.typed)
    after = apart.contents()
    changed = [name for name in sorted(before.keys() | after.keys()) if before.get(name) != after.get(name)]
    return Run(outcome, common, accounts, changed, apart)


def problems_of(command, run):
    """A list of texts, each a difference; empty when all is as expected."""
    problems = audit_problems(run.accounts, run.apart.status, run.scene.program)
    if None in (run.apart.status, run.together.status):
        problems.append("stopped: it took too long")
    elif not run.apart.status == run.together.status == command.exit:
        problems.append(f"exit {run.apart.status} (with both streams in one: {run.together.status}) "
                        f"where {command.exit} is expected")
    problems += _stream_problems(command, run)
    for name, expected in command.left.items():
        found = run.scene.read(name)
        if expected in _KINDS or found in _KINDS:
            if expected is not found:
                problems.append(f"{name} is {_KINDS.get(found, 'a file')} where {_KINDS.get(expected, 'a file')} is expected")
        elif not matches(expected, found):
            problems.append(_difference(name, _lines(">", expected), _lines(">", found)))
    problems += [f"{name} was changed, made or removed, and the transcript says nothing of it"
                 for name in run.changed if name not in command.left]
    for operation, count in command.calls.items():
        if not run.scene.program.counts(operation):
            continue
        counted = calls(run.accounts, operation)
        if counted != count:
            problems.append(f"{operation} was called {counted} times where {count} are expected")
    return problems


def calls(accounts, operation):
    """How often the program called an operation of the machine."""
    return sum(account["calls"].get(operation, 0) for account in accounts)


def _stream_problems(command, run):
    problems = []
    comparable = run.scene.program.comparable
    for title, stream, found in (("standard output", STANDARD_OUTPUT, run.apart.output),
                                 ("standard error", STANDARD_ERROR, run.apart.errors)):
        expected = command.expected(stream)
        expected, found = comparable(expected), comparable(found)
        if not matches(expected, found):
            problems.append(_difference(title, _lines(stream, expected), _lines(stream, found)))
    if not problems and not matches(comparable(command.expected(STREAMS)), comparable(run.together.output)):
        pieces = interleave(run.apart.output, run.apart.errors, run.together.output)
        found = [encode_line(*piece) for piece in pieces] if pieces else _lines("&", run.together.output)
        problems.append(_difference("order of the two streams", [encode_line(*piece) for piece in command.pieces], found))
    return problems


def _lines(mark, text):
    return [encode_line(mark, line) for line in split_lines(hide_pointers(text))]


def _difference(title, expected, found):
    return "\n".join(difflib.unified_diff(expected, found, f"{title}: expected", f"{title}: found", lineterm="", n=2))
