"""What a printf format can turn into."""

import re

_CONVERSION = re.compile(r"%(?P<flags>[-+ #0]*)(?P<width>\*|\d+)?(?:\.(?:\*|\d+)?)?(?:hh|h|ll|l|j|z|t|L)?(?P<kind>[a-zA-Z%])")

_DIGITS = {"d": r"-?\d+", "i": r"-?\d+", "u": r"\d+", "o": "[0-7]+", "x": "[0-9a-f]+", "X": "[0-9A-F]+"}
# One line, which may be the system's text with its own line end.
_ANY_TEXT = r"[^\n]*(?:\r\n)?"
_SAMPLES = {"s": "", "c": "c", **dict.fromkeys(_DIGITS, "1")}


class FormatError(Exception):
    """A conversion that does not print the same everywhere."""


def pieces_of(text):
    """Fixed texts and conversions (matches) of a format, in turn."""
    pieces = []
    at = 0
    for conversion in _CONVERSION.finditer(text):
        if at < conversion.start():
            pieces.append(text[at:conversion.start()])
        if conversion["kind"] == "%":
            pieces.append("%")
        elif conversion["kind"] in _SAMPLES:
            pieces.append(conversion)
        else:
            raise FormatError(conversion[0])
        at = conversion.end()
    return pieces + [text[at:]] if at < len(text) else pieces


def fixed_text(text):
    """What a format always prints."""
    return "".join(piece for piece in pieces_of(text) if isinstance(piece, str))


def pattern_of(text):
    """A regular expression for what a format prints, from its first fixed text or number on."""
    pieces = pieces_of(text)
    while pieces and not isinstance(pieces[0], str) and pieces[0]["kind"] == "s":
        pieces.pop(0)
    return "".join(re.escape(piece) if isinstance(piece, str) else _conversion_pattern(piece) for piece in pieces)


def sample_of(text):
    """A short text that the format can print."""
    return "".join(piece if isinstance(piece, str) else _SAMPLES[piece["kind"]] for piece in pieces_of(text))


def _conversion_pattern(conversion):
    kind = conversion["kind"]
    if kind == "s":
        return _ANY_TEXT
    pattern = r"[\s\S]" if kind == "c" else _DIGITS[kind]
    if conversion["width"] is None:
        return pattern
    if "-" in conversion["flags"]:
        return pattern + " *"
    if "0" in conversion["flags"] and kind in _DIGITS:
        return pattern
    return " *" + pattern
