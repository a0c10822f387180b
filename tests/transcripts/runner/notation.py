"""How bytes are written in a transcript, so that every one of them can be seen.

Inside the runner a text is a str whose characters are bytes (U+0000 to U+00FF), plus POINTER, which stands for the
16 digits of some pointer that is not null.
"""

import re

POINTER = "\ue000"
_POINTER = re.compile("(?!0{16})[0-9A-F]{16}")
_LIKELY_POINTER = re.compile(r"(?<![0-9A-Fa-f])0000[5-7][0-9A-F]{11}(?![0-9A-Fa-f])")

_ESCAPES = {"\\": "\\", "t": "\t", "r": "\r", "n": "\n", "s": " ", "<": "<", '"': '"', "{": "{", "}": "}"}
_TOKEN = re.compile(r"""
    (?P<pointer> <pointer> )
  | \\x (?P<byte> [0-9A-F]{2} )
  | \\\{ (?P<count> [0-9]+ ) [ ] (?P<repeated> (?: [^\\}] | \\. )* ) \}
  | \\ (?! \{ [0-9]+ [ ] ) (?P<escape> [\\trns<"{}] )
  | (?P<plain> [ -\[\]-~] )
""", re.VERBOSE)

_NAMES = {"\\": "\\\\", "\t": "\\t", "\r": "\\r", "\n": "\\n", POINTER: "<pointer>", "<pointer>": "\\<pointer>"}
_TO_WRITE = re.compile(r"<pointer>|([^\n])\1{199,}|.", re.DOTALL)


class TranscriptError(Exception):
    """A transcript that cannot be read or carried out."""


def to_bytes(text):
    if POINTER in text:
        raise TranscriptError("<pointer> has no bytes of its own")
    return text.encode("latin-1")


def decode(source):
    """The text that a piece of transcript stands for."""
    text = ""
    position = 0
    while position < len(source):
        token = _TOKEN.match(source, position)
        if not token:
            raise TranscriptError(f"cannot be read from here: {source[position:]!r}")
        position = token.end()
        if token["pointer"]:
            text += POINTER
        elif token["byte"]:
            text += chr(int(token["byte"], 16))
        elif token["count"]:
            text += decode(token["repeated"]) * int(token["count"])
        else:
            text += token["plain"] or _ESCAPES[token["escape"]]
    return text


def encode(text):
    """The notation of a text within one line; very long runs of one character are folded."""
    encoded = _TO_WRITE.sub(_encode_piece, text)
    return encoded[:-1] + "\\s" if encoded.endswith(" ") else encoded


def _encode_piece(piece):
    character = piece[1] or piece[0]
    name = _NAMES.get(character) or (character if " " <= character <= "~" else f"\\x{ord(character):02X}")
    return "\\{%d %s}" % (len(piece[0]), name.replace("}", "\\}")) if piece[1] else name


def split_lines(text):
    """The lines of a text, each with its "\\n"; the last one may lack it."""
    return re.findall(r"[^\n]*\n|[^\n]+", text)


def encode_line(mark, line):
    """One line of a transcript; a line without its end closes with a lone backslash."""
    body = encode(line[:-1]) if line.endswith("\n") else encode(line) + "\\"
    return f"{mark} {body}" if body else mark


def decode_line(source):
    """The text of a line's part behind its mark; the opposite of encode_line."""
    if source == "":
        return "\n"
    body = source[1:]
    if source[0] != " " or body.endswith(" "):
        raise TranscriptError("a blank must follow the line's mark, and one at the end is written '\\s'")
    if (len(body) - len(body.rstrip("\\"))) % 2 == 0:
        return decode(body) + "\n"
    if body == "\\":
        raise TranscriptError("neither text nor line end")
    return decode(body[:-1])


def matches(expected, actual):
    """Whether the bytes of `actual` are those of `expected`, each POINTER standing for some pointer."""
    first, *others = expected.split(POINTER)
    if not actual.startswith(first):
        return False
    at = len(first)
    for other in others:
        pointer = _POINTER.match(actual, at)
        if not pointer or not actual.startswith(other, pointer.end()):
            return False
        at = pointer.end() + len(other)
    return at == len(actual)


def hide_pointers(text):
    """The text with POINTER for whatever looks like an address of the process."""
    return _LIKELY_POINTER.sub(POINTER, text)
