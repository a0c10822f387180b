"""What a printf format can turn into, and which messages a printed text holds."""

import functools
import re

from message_sources import ERRORS, OUTPUT, SourceError

_PIECE = re.compile(r"%(?P<flags>[-+ #0]*)(?P<width>\*|\d+)?(?:\.(?:\*|\d+)?)?(?:hh|h|ll|l|j|z|t|L)?(?P<kind>[diouxXsc%])"
                    "|(?P<text>[^%]+)|(?P<wrong>.)")
_DIGITS = {"d": r"-?\d+", "i": r"-?\d+", "u": r"\d+", "o": "[0-7]+", "x": "[0-9a-f]+", "X": "[0-9A-F]+"}
# One line, which may be the system's text with its own line end.
_ANY_TEXT = r"[^\n]*(?:\r\n)?"
_SAMPLES = {"s": "", "c": "c", "%": "%", **dict.fromkeys(_DIGITS, "1")}


def _turned(text, conversion, fixed=str):
    """A format with each conversion and fixed text turned into something else."""
    pieces = []
    for piece in _PIECE.finditer(text):
        if piece["wrong"]:
            raise SourceError(f"{text!r} has a conversion that does not print the same everywhere")
        pieces.append(conversion(piece) if piece["kind"] else fixed(piece["text"]))
    return "".join(pieces)


def fixed_text(text):
    """What a format always prints."""
    return _turned(text, lambda piece: "%" if piece["kind"] == "%" else "")


@functools.cache
def _pattern(message):
    """What a message prints, from its first fixed text or number on."""
    text = re.sub(r"^(%[-\d.*]*s)+", "", message.format)
    return re.compile(re.escape(message.tag) + _turned(text, _conversion_pattern, re.escape))


def _conversion_pattern(conversion):
    kind = conversion["kind"]
    if kind in "s%":
        return _ANY_TEXT if kind == "s" else "%"
    pattern = _DIGITS.get(kind, r"[\s\S]")
    if conversion["width"] is None or "0" in conversion["flags"]:
        return pattern
    return pattern + " *" if "-" in conversion["flags"] else " *" + pattern


def unprinted_messages(messages, directory):
    """The messages that stand nowhere in the printed texts, or only where a longer message explains the text as well."""
    texts = {stream: "\n".join(path.read_bytes().decode("latin-1") for path in sorted(directory.glob(f"*.{stream}")))
             for stream in (OUTPUT, ERRORS)}
    return [message for message in messages
            if not any(_holds(texts[stream], message, [m for m in messages if stream in m.streams and _explains(m, message)])
                       for stream in message.streams)]


def _holds(text, message, longer):
    covered = None
    for match in _pattern(message).finditer(text):
        if covered is None:
            covered = [found.span() for other in longer for found in _pattern(other).finditer(text)]
        if not any(start <= match.start() and match.end() <= end for start, end in covered):
            return True
    return False


def _explains(longer, message):
    """Whether the text of `message` also stands in what `longer` prints."""
    sample = longer.tag + _turned(longer.format, lambda piece: _SAMPLES[piece["kind"]])
    return (len(longer.tag + fixed_text(longer.format)) > len(message.tag + fixed_text(message.format))
            and _pattern(message).search(sample) is not None)
