"""Finds the messages of the sources: the literals that stand as formats in calls of print functions."""

import dataclasses
import re

from .cpp_tokens import calls_in, string_value, tokens_of

TOPS = ("app", "wmi")
OUTPUT = "stdout"
ERRORS = "stderr"

# Variadic functions that make a text without printing it.
_NOT_PRINTING = {"BoundedFormat", "BoundedWideFormat", "UnboundedFormat"}
_STREAMS = {"Print": (OUTPUT,), "PrintError": (ERRORS,), "TracePrint": (ERRORS,), "Report": (ERRORS,)}
# What would print past the console.
_LIBRARY_PRINTING = {"printf", "fprintf", "puts", "fputs", "fwrite", "perror"}

# The tag that each category of the layer trace puts before its lines.
_TAGS = {
    "kVariant": "(orbWmiVariant):",
    "kCommon": "(orbWmiCommon):",
    "kEnumerator": "(orbWmiEnumerator):",
    "kClass": "(orbWmiClass):",
    "kConnection": "(orbWmiConnection):",
    "kRequest": "(orbWmiRequest):",
}
_MACRO_CONVERSION = re.compile(r"PRI([diouxX])(?:8|16|32|64|MAX|PTR)")


@dataclasses.dataclass(frozen=True)
class Message:
    """`tag` is what stands before it when it is printed."""
    file: str
    line: int
    format: str
    tag: str
    streams: tuple


class SourceError(Exception):
    """A source that prints in a way that cannot be followed."""


def messages_of(root):
    """Every message of the tree, in the order of files and lines."""
    messages = []
    for top in TOPS:
        sources = {str(path.relative_to(root)): tokens_of(path.read_text(encoding="utf-8"))
                   for path in sorted((root / top).rglob("*")) if path.suffix in (".h", ".cpp")}
        printers = _print_functions(sources)
        for name, tokens in sources.items():
            messages += _messages_in(name, tokens, printers)
    return messages


def _print_functions(sources):
    """The variadic functions that a top directory declares, each with the place of its format."""
    printers = {}
    for name, tokens in sources.items():
        for call in calls_in(tokens):
            if len(call.arguments) < 2 or _text(call.arguments[-1]) != "..." or call.name in _NOT_PRINTING:
                continue
            if not re.fullmatch(r"const char \* \w+", _text(call.arguments[-2])):
                raise SourceError(f"{name}:{call.line}: {call.name} is variadic but its format is no const char*")
            place = len(call.arguments) - 2
            if printers.setdefault(call.name, place) != place:
                raise SourceError(f"{name}:{call.line}: two functions {call.name} have their formats at different places")
    return printers


def _messages_in(name, tokens, printers):
    tags = _category_variables(tokens)
    for call in calls_in(tokens):
        literals = call.name in _LIBRARY_PRINTING and [t for a in call.arguments for t in a if t.kind == "string"]
        if literals:
            raise SourceError(f"{name}:{call.line}: prints {literals[0].text} past the console")
        place = printers.get(call.name)
        if place is None or len(call.arguments) <= place or _text(call.arguments[-1]) == "...":
            continue
        tag = _tag(call, tags)
        streams = (OUTPUT,) if tag else _STREAMS.get(call.name, (OUTPUT, ERRORS))
        formats = _formats(call.arguments[place])
        if not formats:
            raise SourceError(f"{name}:{call.line}: the format of {call.name} does not stand there in full")
        for format_text in formats:
            yield Message(name, call.line, format_text, tag, streams)


def _text(tokens):
    return " ".join(token.text for token in tokens)


def _formats(tokens):
    """The texts of an argument: adjacent literals are one, those of a choice are several."""
    formats = []
    previous = None
    for token in tokens:
        conversion = _MACRO_CONVERSION.fullmatch(token.text)
        if token.kind == "string" or conversion:
            piece = conversion[1] if conversion else string_value(token.text)
            if previous in ("string", "macro"):
                formats[-1] += piece
            else:
                formats.append(piece)
        previous = "macro" if conversion else token.kind
    return formats


def _category_variables(tokens):
    """The names of a file's trace objects, each with its tag."""
    tags = {}
    for at, token in enumerate(tokens[:-2]):
        if token.text == "CategoryTrace" and tokens[at + 1].kind == "word":
            category = next((t.text for t in tokens[at + 2:at + 8] if t.text in _TAGS), None)
            if category:
                tags[tokens[at + 1].text] = _TAGS[category]
    return tags


def _tag(call, variables):
    """The tag that the trace object, or the category among the arguments, puts before the message."""
    if len(call.before) >= 2 and call.before[-1].text in (".", "->"):
        receiver = call.before[-2].text
        if receiver in variables:
            return variables[receiver]
    for argument in call.arguments[:1]:
        for token in argument:
            if token.text in _TAGS:
                return _TAGS[token.text]
    return ""
