"""As much of C++ as it takes to find calls and their arguments."""

import dataclasses
import re

_TOKEN = re.compile(r"""
    (?P<skip> \s+ | //[^\n]* | /\*.*?\*/ | \\\n )
  | (?P<raw> (?:u8|[uUL])?R"(?P<delimiter>[^()\s\\]*)\( .*? \)(?P=delimiter)" )
  | (?P<string> (?:u8|[uUL])?"(?:[^"\\\n]|\\.)*" )
  | (?P<character> (?:u8|[uUL])?'(?:[^'\\\n]|\\.)*' )
  | (?P<word> [A-Za-z_]\w* )
  | (?P<number> \.?\d(?:[\w.]|'\w|[eEpP][+-])* )
  | (?P<sign> \.\.\. | :: | -> | . )
""", re.VERBOSE | re.DOTALL)

_ESCAPE = re.compile(r"\\(x[0-9A-Fa-f]+|[0-7]{1,3}|u[0-9A-Fa-f]{4}|.)", re.DOTALL)
_SIMPLE = {"n": "\n", "t": "\t", "r": "\r", "a": "\a", "b": "\b", "f": "\f", "v": "\v"}

OPENING = {"(": ")", "[": "]", "{": "}"}


@dataclasses.dataclass
class Token:
    kind: str
    text: str
    line: int


@dataclasses.dataclass
class Call:
    """`before` is what stands in front of the name: the receiver's tokens, or a declaration's type."""
    name: str
    line: int
    before: list
    arguments: list


def tokens_of(source):
    tokens = []
    line = 1
    for match in _TOKEN.finditer(source):
        if match.lastgroup != "skip":
            kind = "string" if match["raw"] else match.lastgroup
            tokens.append(Token(kind, match[0], line))
        line += match[0].count("\n")
    return tokens


def string_value(literal):
    """The characters that a string literal stands for."""
    prefix, body = literal.split('"', 1)
    if prefix.endswith("R"):
        delimiter = body.partition("(")[0]
        return body[len(delimiter) + 1:-len(delimiter) - 2]
    return _ESCAPE.sub(_unescape, body[:-1])


def _unescape(match):
    escape = match[1]
    if escape[0] in "xu":
        return chr(int(escape[1:], 16))
    if escape[0] in "01234567":
        return chr(int(escape, 8))
    return _SIMPLE.get(escape, escape)


def calls_in(tokens):
    """Every name followed by parentheses, be it a call or a declaration."""
    for at, token in enumerate(tokens[:-1]):
        if token.kind == "word" and tokens[at + 1].text == "(":
            yield Call(token.text, token.line, tokens[max(at - 8, 0):at], arguments_at(tokens, at + 1))


def arguments_at(tokens, opening):
    """The arguments in the parentheses that open there, each a list of tokens."""
    arguments = [[]]
    closings = []
    for token in tokens[opening:]:
        if token.kind == "sign" and token.text in OPENING:
            closings.append(OPENING[token.text])
            if len(closings) == 1:
                continue
        elif closings and token.text == closings[-1]:
            closings.pop()
            if not closings:
                break
        elif token.text == "," and len(closings) == 1:
            arguments.append([])
            continue
        arguments[-1].append(token)
    return arguments if arguments != [[]] else []
