"""Holds what a command did against what the transcript says."""

import difflib

from .audit import audit_problems, calls
from .interleave import interleave
from .notation import borrow_pointers, encode_line, matches, split_lines
from .transcript import ABSENT, DIRECTORY, MARKS, STANDARD_ERROR, STANDARD_OUTPUT

_KINDS = {ABSENT: "nothing", DIRECTORY: "a directory"}


def problems_of(command, run):
    """A list of texts, each a difference; empty when all is as expected."""
    problems = []
    if None in (run.status, run.status_together):
        problems.append("stopped: it took too long")
    elif run.status != command.exit or run.status_together != command.exit:
        problems.append(f"exit {run.status} (with both streams in one file: {run.status_together}) "
                        f"where {command.exit} is expected")
    problems += _stream_problems(command, run)
    problems += _left_problems(command, run)
    for operation, count in command.calls.items():
        counted = calls(run.accounts, operation)
        if counted != count:
            problems.append(f"{operation} was called {counted} times where {count} are expected")
    if run.audited:
        problems += audit_problems(run.accounts)
    return problems


def _stream_problems(command, run):
    problems = []
    for stream, title in ((STANDARD_OUTPUT, "standard output"), (STANDARD_ERROR, "standard error")):
        expected = command.expected(stream)
        if not matches(expected, run.streams[stream]):
            problems.append(_difference(title, MARKS[stream], split_lines(expected), split_lines(run.streams[stream])))
    if not problems and not matches(command.expected(), run.together):
        problems.append(_order_difference(command, run))
    return problems


def _difference(title, mark, expected_lines, actual_lines):
    actual_lines = borrow_pointers(expected_lines, actual_lines)
    return _diff(title, [encode_line(mark, line) for line in expected_lines],
                 [encode_line(mark, line) for line in actual_lines])


def _order_difference(command, run):
    """The streams are right, each by itself."""
    pieces = interleave(run.streams, run.together)
    if pieces is None:
        return _difference("both streams in one file, which do not agree with the streams alone", "&",
                           split_lines(command.expected()), split_lines(run.together))
    expected_texts = [piece.text for piece in command.pieces]
    actual = [encode_line(MARKS[piece.stream], text)
              for piece, text in zip(pieces, borrow_pointers(expected_texts, [piece.text for piece in pieces]))]
    return _diff("order of the two streams",
                 [encode_line(MARKS[piece.stream], piece.text) for piece in command.pieces], actual)


def _diff(title, expected, actual):
    lines = difflib.unified_diff(expected, actual, f"{title}: expected", f"{title}: found", lineterm="", n=2)
    return "\n".join(lines)


def _left_problems(command, run):
    problems = []
    for name, expected in command.left.items():
        problems += _content_problems(name, expected, run.scene.read(name))
    for name in sorted(run.changed - set(command.left)):
        problems.append(f"{name} was changed, made or removed, and the transcript says nothing of it")
    return problems


def _content_problems(name, expected, found):
    if expected in _KINDS or found in _KINDS:
        if expected is found:
            return []
        return [f"{name} is {_KINDS.get(found, 'a file')} where {_KINDS.get(expected, 'a file')} is expected"]
    if matches(expected, found):
        return []
    return [_difference(name, ">", split_lines(expected), split_lines(found))]
