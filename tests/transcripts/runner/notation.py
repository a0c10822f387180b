"""How bytes are written in a transcript, so that every one of them can be seen.

Inside the runner a text is a str whose characters are bytes (U+0000 to U+00FF), plus POINTER, which stands for the
16 digits of some pointer that is not null, and ADDRESS, which stands for the digits of the lower half of one.
"""

import re

POINTER, ADDRESS = "\ue000", "\ue001"
_VALUES = {POINTER: re.compile("(?!0{16})[0-9A-F]{16}"), ADDRESS: re.compile("0|[1-9a-f][0-9a-f]{0,7}")}
_LIKELY = {POINTER: re.compile(r"(?<![0-9A-Fa-f])0000[5-7][0-9A-F]{11}(?![0-9A-Fa-f])"),
           ADDRESS: re.compile(r"(?<=;Buff\(0x)[0-9a-f]{1,8}(?=\)\n)")}

_ESCAPES = {"\\": "\\", "t": "\t", "r": "\r", "n": "\n", "s": " ", "<": "<", '"': '"', "{": "{", "}": "}"}
_TOKEN = re.compile(r"""
    (?P<value> <pointer> | <address> )
  | \\x (?P<byte> [0-9A-F]{2} )
  | \\\{ (?P<count> [0-9]+ ) [ ] (?P<repeated> (?: [^\\}] | \\. )* ) \}
  | \\ (?! \{ [0-9]+ [ ] ) (?P<escape> [\\trns<"{}] )
  | (?P<plain> [ -\[\]-~] )
""", re.VERBOSE)

_TOKENS = {"<pointer>": POINTER, "<address>": ADDRESS}
_NAMES = {"\\": "\\\\", "\t": "\\t", "\r": "\\r", "\n": "\\n", POINTER: "<pointer>", ADDRESS: "<address>",
          "<pointer>": "\\<pointer>", "<address>": "\\<address>"}
_TO_WRITE = re.compile(r"<pointer>|<address>|([^\n])\1{199,}|.", re.DOTALL)


class TranscriptError(Exception):
    """A transcript that cannot be read or carried out."""


def to_bytes(text):
    if POINTER in text or ADDRESS in text:
        raise TranscriptError("<pointer> and <address> have no bytes of their own")
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
        if token["value"]:
            text += _TOKENS[token["value"]]
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
    """Whether the bytes of `actual` are those of `expected`, each POINTER and ADDRESS standing for some value."""
    first, *others = re.split(f"([{POINTER}{ADDRESS}])", expected)
    if not actual.startswith(first):
        return False
    at = len(first)
    for token, other in zip(others[::2], others[1::2]):
        value = _VALUES[token].match(actual, at)
        if not value or not actual.startswith(other, value.end()):
            return False
        at = value.end() + len(other)
    return at == len(actual)


def hide_pointers(text):
    """The text with POINTER and ADDRESS for whatever looks like an address of the process."""
    for token, likely in _LIKELY.items():
        text = likely.sub(token, text)
    return text
