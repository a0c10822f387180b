"""What a transcript says: cases, each a series of steps that set the scene or run the program."""

import dataclasses

STANDARD_OUTPUT = 1
STANDARD_ERROR = 2
MARKS = {STANDARD_OUTPUT: "|", STANDARD_ERROR: "!"}

ABSENT = object()
DIRECTORY = object()


@dataclasses.dataclass
class Setting:
    """A step that changes what the next command finds; `word` says which and `value` holds its parsed argument."""
    line: int
    word: str
    value: object


@dataclasses.dataclass
class Piece:
    """Output on one stream: a line, or the part of one that came before the other stream spoke."""
    stream: int
    text: str


@dataclasses.dataclass
class Command:
    """A command line with what is expected of it. `first` and `last` bound its source lines, from 0, `last` excluded."""
    line: int
    words: list
    first: int
    last: int = 0
    typed: str = ""
    pieces: list = dataclasses.field(default_factory=list)
    exit: object = None
    left: dict = dataclasses.field(default_factory=dict)
    calls: dict = dataclasses.field(default_factory=dict)

    def expected(self, stream=None):
        """All that is printed on one stream, or on both in the order of events."""
        return "".join(piece.text for piece in self.pieces if stream in (None, piece.stream))


@dataclasses.dataclass
class Case:
    """Steps that begin in a directory of their own."""
    title: str
    steps: list

    def commands(self):
        return [step for step in self.steps if isinstance(step, Command)]
