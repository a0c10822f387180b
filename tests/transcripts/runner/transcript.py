"""What a transcript says: cases, each a series of steps that set the scene or run the program."""

import dataclasses
import re
from collections import namedtuple

from .notation import TranscriptError, decode, decode_line

STANDARD_OUTPUT, STANDARD_ERROR = "|", "!"
STREAMS = (STANDARD_OUTPUT, STANDARD_ERROR)
ABSENT = object()
DIRECTORY = object()

_WORD = re.compile(r' *((?:"(?:[^"\\]|\\.)*"|[!#-\[\]-~])+)')

# Output on one stream, told by its mark: a line, or the part of one that came before the other stream spoke.
Piece = namedtuple("Piece", "stream text")


@dataclasses.dataclass
class Setting:
    """A step that changes what the next command finds: `text` is all behind the word, `content` what the `>` lines say."""
    line: int
    word: str
    text: str
    content: str = ""

    def add(self, line):
        if line[0] == ">":
            self.content += decode_line(line[1:])
        else:
            self.text += "\n" + line


@dataclasses.dataclass
class Command:
    """A command line with what is expected of it. `line` and `last` are its first and last line, counted from 1."""
    line: int
    words: list
    last: int
    typed: str = ""
    pieces: list = dataclasses.field(default_factory=list)
    exit: object = None
    left: dict = dataclasses.field(default_factory=dict)
    calls: dict = dataclasses.field(default_factory=dict)
    repeats: list = dataclasses.field(default_factory=list)
    simulated: str = ""

    def expected(self, streams):
        """All that is printed on these streams, in the order of events."""
        return "".join(piece.text for piece in self.pieces if piece.stream in streams)

    def add(self, line):
        self.last += 1
        word, _, rest = line.partition(" ")
        if line[0] in STREAMS:
            self.pieces.append(Piece(line[0], decode_line(line[1:])))
        elif line[0] == "<":
            self.typed += decode_line(line[1:])
        elif line[0] == ">" and self.left:
            self.left[list(self.left)[-1]] += decode_line(line[1:])
        elif word == "repeat":
            self.repeats.append((int(rest), len(self.pieces)))
        elif word == "end" and self.repeats:
            count, start = self.repeats.pop()
            self.pieces += self.pieces[start:] * (count - 1)
        elif word == "exit":
            self.exit = int(rest)
        elif word == "left":
            name, *kind = split_words(rest)
            self.left[name] = {"absent": ABSENT, "directory": DIRECTORY}[kind[0]] if kind else ""
        elif word == "calls":
            operation, count = rest.split()
            self.calls[operation] = int(count)
        elif word == "simulated" and rest:
            self.simulated = rest
        else:
            raise TranscriptError(f"'{word}' is no part of what a command does")


class Case(namedtuple("Case", "title steps")):
    """Steps that begin in a directory of their own."""

    def commands(self):
        return [step for step in self.steps if isinstance(step, Command)]


def parse(source):
    """The cases of a transcript; what stands before the first title is common to all of them."""
    cases = [Case("", [])]
    step = None
    for number, line in enumerate(source.removesuffix("\n").split("\n"), 1):
        try:
            if line.startswith("=="):
                cases.append(Case(line[2:].strip(), list(cases[0].steps)))
                step = None
            elif not line.strip():
                step = None
            elif line.startswith("$"):
                step = Command(number, split_words(line[1:]), number)
                cases[-1].steps.append(step)
            elif isinstance(step, Command) or line[0] in " >" and step:
                step.add(line)
            elif not line.startswith("#"):
                step = Setting(number, *re.fullmatch(r"(\S*) ?(.*)", line).groups())
                cases[-1].steps.append(step)
        except (TranscriptError, ValueError, KeyError, TypeError) as error:
            raise TranscriptError(f"{number}: {error}") from error
    titled = cases[1:] or cases
    if titled != cases and cases[0].commands():
        raise TranscriptError(f"{cases[0].commands()[0].line}: commands stand under a title once there is one")
    for case in titled:
        if not case.commands():
            raise TranscriptError(f"case '{case.title}' runs nothing")
        for command in case.commands():
            if command.repeats:
                raise TranscriptError(f"{command.line}: 'repeat' without 'end'")
    return titled


def split_words(source):
    """The words of a command line. A word `*N` says that the word before it stands there N times."""
    words = []
    position = 0
    while word := _WORD.match(source, position):
        position = word.end()
        if words and re.fullmatch(r"\*\d+", word[1]):
            words += words[-1:] * (int(word[1][1:]) - 1)
        else:
            words.append(re.sub(r'"((?:[^"\\]|\\.)*)"', lambda quoted: decode(quoted[1]), word[1]))
    if source[position:].strip(" ") or not words:
        raise TranscriptError("a word with more than printable ASCII characters stands in quotes, its backslashes doubled")
    return words
