"""Reads the text of a transcript."""

import json
import re

from .notation import NotationError, decode, decode_line
from .transcript import ABSENT, DIRECTORY, MARKS, Case, Command, Piece, Setting

_STREAMS = {mark: stream for stream, mark in MARKS.items()}
_WORD = re.compile(r'"((?:[^"\\]|\\.)*)"|([!#-\[\]-~]+)')
_SETTINGS = {}


class TranscriptError(Exception):
    """A transcript that cannot be read; tells the line."""


def parse(source):
    """The cases of a transcript; what stands before the first title is common to all of them."""
    return _Parser(source).cases()


def split_words(source):
    """The words of a command line. A word `*N` says that the word before it stands there N times."""
    words = []
    position = 0
    while position < len(source):
        blanks = len(source[position:]) - len(source[position:].lstrip(" "))
        position += blanks
        word, end = _read_word(source, position)
        repeat = re.fullmatch(r"\*([0-9]+)", source[position:end])
        if repeat and words:
            words.extend(words[-1:] * (int(repeat[1]) - 1))
        elif end > position:
            words.append(word)
        position = end
    return words


def _read_word(source, position):
    pieces = []
    while position < len(source) and source[position] != " ":
        piece = _WORD.match(source, position)
        if not piece:
            raise NotationError("a word with more than printable ASCII characters stands in quotes, its backslashes doubled")
        pieces.append(piece[2] if piece[1] is None else decode(piece[1], token=None))
        position = piece.end()
    return "".join(pieces), position


class _Parser:
    def __init__(self, source):
        self.lines = source.split("\n")
        if self.lines and self.lines[-1] == "":
            self.lines.pop()
        self.at = 0

    def cases(self):
        common = self._steps()
        if self.at == len(self.lines):
            return [Case("", common)]
        if any(isinstance(step, Command) for step in common):
            raise TranscriptError(f"{common[-1].line}: commands stand under a title once there is one")
        cases = []
        while self.at < len(self.lines):
            title = self.lines[self.at][2:].strip()
            self.at += 1
            cases.append(Case(title, common + self._steps()))
        return cases

    def _steps(self):
        steps = []
        while self.at < len(self.lines) and not self.lines[self.at].startswith("=="):
            line = self.lines[self.at]
            if line.strip() == "" or line.startswith("#"):
                self.at += 1
                continue
            number = self.at + 1
            try:
                steps.append(self._command() if line.startswith("$") else self._setting())
            except (NotationError, ValueError) as error:
                raise TranscriptError(f"{max(number, self.at)}: {error}") from error
        return steps

    def _setting(self):
        number = self.at + 1
        word, _, rest = self.lines[self.at].partition(" ")
        self.at += 1
        if word not in _SETTINGS:
            raise NotationError(f"unknown setting '{word}'")
        return Setting(number, word, _SETTINGS[word](self, rest))

    def _command(self):
        line = self.lines[self.at]
        command = Command(line=self.at + 1, words=split_words(line[1:]), first=self.at)
        self.at += 1
        if not command.words:
            raise NotationError("a command line has at least the program's name")
        self._block(command)
        command.last = self.at
        return command

    def _block(self, command):
        """Everything up to the next empty line, command or title belongs to the command."""
        repeats = []
        while self.at < len(self.lines) and not re.match(r"\s*$|\$|==", self.lines[self.at]):
            line = self.lines[self.at]
            self.at += 1
            word, _, rest = line.partition(" ")
            if line[0] in _STREAMS:
                command.pieces.append(Piece(_STREAMS[line[0]], decode_line(line[1:])))
            elif line[0] == "<":
                command.typed += decode_line(line[1:])
            elif word == "repeat":
                repeats.append((int(rest), len(command.pieces)))
            elif word == "end" and repeats:
                count, start = repeats.pop()
                command.pieces += command.pieces[start:] * (count - 1)
            elif word == "exit":
                command.exit = int(rest)
            elif word == "left":
                name, content = self._left(rest)
                command.left[name] = content
            elif word == "calls":
                operation, count = rest.split()
                command.calls[operation] = int(count)
            else:
                raise NotationError(f"'{word}' is no part of what a command does")
        if repeats:
            raise NotationError("'repeat' without 'end'")

    def _left(self, rest):
        for word, content in (("absent", ABSENT), ("directory", DIRECTORY)):
            if rest.endswith(" " + word):
                return _one_word(rest[:-len(word)]), content
        return _one_word(rest), self._content()

    def _content(self):
        """The lines of a file's content."""
        content = []
        while self.at < len(self.lines) and self.lines[self.at].startswith(">"):
            self.at += 1
            content.append(decode_line(self.lines[self.at - 1][1:]))
        return "".join(content)

    def read_file(self, rest):
        return _one_word(rest), self._content()

    def read_json(self, rest):
        while self.at < len(self.lines) and self.lines[self.at].startswith(" "):
            rest += "\n" + self.lines[self.at]
            self.at += 1
        return json.loads(rest)

    def read_edit(self, rest):
        if rest.endswith(" removed"):
            return rest[:-len(" removed")].strip(), ABSENT
        pointer, equals, value = rest.partition(" = ")
        if not equals:
            raise NotationError("an edit is written '<JSON pointer> = <value>' or '<JSON pointer> removed'")
        return pointer.strip(), self.read_json(value)


def _one_word(source):
    words = split_words(source)
    if len(words) != 1:
        raise NotationError("one name is needed")
    return words[0]


def _audit(rest):
    if rest != "none":
        raise NotationError("'audit none' is the only form")
    return None


_SETTINGS.update({
    "host": lambda parser, rest: _one_word(rest),
    "patch": _Parser.read_json,
    "edit": _Parser.read_edit,
    "file": _Parser.read_file,
    "directory": lambda parser, rest: _one_word(rest),
    "remove": lambda parser, rest: _one_word(rest),
    "audit": lambda parser, rest: _audit(rest),
    "timeout": lambda parser, rest: float(rest),
})
