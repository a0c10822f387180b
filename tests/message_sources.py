"""Finds the messages of the sources: the literals that stand as formats in calls of print functions."""

import ast
import re
from collections import namedtuple

TOPS = ("app", "wmi")
OUTPUT, ERRORS = "stdout", "stderr"

# Variadic functions that make a text without printing it, and what would print past the console.
_NOT_PRINTING = {"BoundedFormat", "BoundedWideFormat", "UnboundedFormat"}
_LIBRARY_PRINTING = {"printf", "fprintf", "puts", "fputs", "fwrite", "perror"}
_STREAMS = {"Print": (OUTPUT,), "PrintError": (ERRORS,), "TracePrint": (ERRORS,), "Report": (ERRORS,)}

_TOKEN = re.compile(r"""
    (?P<skip> \s+ | //[^\n]* | /\*.*?\*/ | \\\n )
  | (?P<string> (?:u8|[uUL])?"(?:[^"\\\n]|\\.)*" )
  | '(?:[^'\\\n]|\\.)+' | \d(?:'?[\w.])* | \w+ | \.\.\. | .
""", re.VERBOSE | re.DOTALL)
_OPENING, _CLOSING = "([{", ")]}"
_TRACE_OBJECT = re.compile(r"CategoryTrace \w+\{WmiLayerTrace::k(\w+)\}")

# `tag` is what the layer trace puts before the message.
Message = namedtuple("Message", "file line format tag streams")
Token = namedtuple("Token", "text line is_string")
Call = namedtuple("Call", "name line arguments")


class SourceError(Exception):
    """A source that prints in a way that cannot be followed."""


def messages_of(root):
    """Every message of the tree, in the order of files and lines."""
    messages = []
    for top in TOPS:
        sources = {str(path.relative_to(root)): path.read_text(encoding="utf-8")
                   for path in sorted((root / top).rglob("*")) if path.suffix in (".h", ".cpp")}
        calls = {name: list(_calls_in(source)) for name, source in sources.items()}
        printers = _print_functions(calls)
        for name, source in sources.items():
            messages += _messages_in(name, calls[name], printers, _TRACE_OBJECT.search(source))
    return messages


def _calls_in(source):
    """Every name followed by parentheses, be it a call or a declaration, with its arguments as lists of tokens."""
    tokens = []
    line = 1
    for match in _TOKEN.finditer(source):
        if not match["skip"]:
            tokens.append(Token(match[0], line, bool(match["string"])))
        line += match[0].count("\n")
    for at, token in enumerate(tokens[:-1]):
        if token.text.isidentifier() and tokens[at + 1].text == "(":
            yield Call(token.text, token.line, _arguments(tokens, at + 1))


def _arguments(tokens, opening):
    """The arguments in the parentheses that open there."""
    arguments = [[]]
    depth = 0
    for token in tokens[opening:]:
        depth += (token.text in _OPENING) - (token.text in _CLOSING)
        if depth == 0:
            break
        if token.text == "," and depth == 1:
            arguments.append([])
        else:
            arguments[-1].append(token)
    arguments[0].pop(0)
    return arguments


def _text(tokens):
    return " ".join(token.text for token in tokens)


def _print_functions(calls):
    """The variadic functions that a top directory declares, each with the place of its format."""
    printers = {}
    for name, call in ((name, call) for name in calls for call in calls[name]):
        if len(call.arguments) < 2 or _text(call.arguments[-1]) != "..." or call.name in _NOT_PRINTING:
            continue
        place = len(call.arguments) - 2
        if not re.fullmatch(r"const char \* \w+", _text(call.arguments[place])):
            raise SourceError(f"{name}:{call.line}: {call.name} is variadic but its format is no const char*")
        printers[call.name] = place
    return printers


def _messages_in(name, calls, printers, trace_object):
    tag = f"(orbWmi{trace_object[1]}):" if trace_object else ""
    for call in calls:
        if call.name in _LIBRARY_PRINTING and any(token.is_string for argument in call.arguments for token in argument):
            raise SourceError(f"{name}:{call.line}: {call.name} prints past the console")
        place = printers.get(call.name)
        if place is None or len(call.arguments) <= place or _text(call.arguments[-1]) == "...":
            continue
        formats = _formats(call.arguments[place])
        if not formats:
            raise SourceError(f"{name}:{call.line}: the format of {call.name} does not stand there in full")
        for text in formats:
            yield Message(name, call.line, text, tag, (OUTPUT,) if tag else _STREAMS.get(call.name, (OUTPUT, ERRORS)))


def _formats(tokens):
    """The texts of an argument: adjacent literals are one, those of a choice are several."""
    formats = []
    continues = False
    for token in tokens:
        number_format = re.fullmatch(r"PRI([diouxX])\w+", token.text)
        if token.is_string or number_format:
            piece = number_format[1] if number_format else ast.literal_eval(token.text)
            formats = [*formats[:-1], formats[-1] + piece] if continues else [*formats, piece]
        continues = token.is_string or bool(number_format)
    return formats
