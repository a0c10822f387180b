"""How bytes are written in a transcript, so that every one of them can be seen.

Inside the runner a text is a str whose characters are bytes (U+0000 to U+00FF), plus POINTER, which stands for the
16 digits of some pointer that is not null.
"""

import re

POINTER = "\ue000"
_POINTER_TOKEN = "<pointer>"
_POINTER_REGEX = "(?!0{16})[0-9A-F]{16}"

_ESCAPES = {"\\": "\\", "t": "\t", "r": "\r", "n": "\n", "s": " ", "<": "<", '"': '"', "{": "{", "}": "}"}
_NAMES = {"\\": "\\\\", "\t": "\\t", "\r": "\\r", "\n": "\\n"}
_LONG_RUN = re.compile(r"([^\n])\1{199,}")
_POINTER_VALUE = re.compile(r"(?<![0-9A-Fa-f])0000[5-7][0-9A-F]{11}(?![0-9A-Fa-f])")


class NotationError(Exception):
    """A text that cannot be read."""


def from_bytes(data):
    return data.decode("latin-1")


def to_bytes(text):
    if POINTER in text:
        raise NotationError("<pointer> has no bytes of its own")
    return text.encode("latin-1")


def decode(source, token=_POINTER_TOKEN):
    """The text that a piece of transcript stands for; without a token every `<` is just that."""
    text, rest = _decode_until(source, None, token)
    assert rest == ""
    return text


def _decode_until(source, closing, token):
    """Reads up to an unescaped `closing` (or the end) and gives the text and what follows."""
    text = []
    position = 0
    while position < len(source):
        character = source[position]
        if character == closing:
            return "".join(text), source[position + 1:]
        if token and source.startswith(token, position):
            text.append(POINTER)
            position += len(token)
        elif character == "\\":
            piece, rest = _decode_escape(source[position + 1:], token)
            text.append(piece)
            position = len(source) - len(rest)
        elif " " <= character <= "~":
            text.append(character)
            position += 1
        else:
            raise NotationError(f"the character {character!r} must be written as an escape")
    if closing is not None:
        raise NotationError(f"'{closing}' is missing")
    return "".join(text), ""


def _decode_escape(source, token):
    """Reads what follows a backslash and gives the text and the rest."""
    hexadecimal = re.match(r"x([0-9A-F]{2})", source)
    if hexadecimal:
        return chr(int(hexadecimal[1], 16)), source[3:]
    repeat = re.match(r"\{([0-9]+) ", source)
    if repeat:
        text, rest = _decode_until(source[repeat.end():], "}", token)
        return text * int(repeat[1]), rest
    if source[:1] in _ESCAPES and source:
        return _ESCAPES[source[0]], source[1:]
    raise NotationError(f"unknown escape '\\{source[:1]}'")


def encode(text):
    """The notation of a text within one line; very long runs of one character are folded."""
    pieces = []
    position = 0
    for run in _LONG_RUN.finditer(text):
        pieces.append(_encode_plain(text[position:run.start()]))
        pieces.append("\\{%d %s}" % (run.end() - run.start(), _encode_plain(run[1]).replace("}", "\\}")))
        position = run.end()
    pieces.append(_encode_plain(text[position:]))
    encoded = "".join(pieces)
    return encoded[:-1] + "\\s" if encoded.endswith(" ") else encoded


def _encode_plain(text):
    text = "".join(_NAMES.get(c, c if " " <= c <= "~" or c == POINTER else "\\x%02X" % ord(c)) for c in text)
    return text.replace(_POINTER_TOKEN, "\\" + _POINTER_TOKEN).replace(POINTER, _POINTER_TOKEN)


def split_lines(text):
    """The lines of a text, each with its "\\n"; the last one may lack it."""
    return re.findall(r"[^\n]*\n|[^\n]+", text)


def encode_line(prefix, line):
    """One line of a transcript; a line without its end closes with a lone backslash."""
    ended = line.endswith("\n")
    body = encode(line[:-1] if ended else line) + ("" if ended else "\\")
    return f"{prefix} {body}" if body else prefix


def decode_line(source):
    """The text of a line's part behind its prefix; the opposite of encode_line."""
    if source == "":
        return "\n"
    if not source.startswith(" "):
        raise NotationError("a blank must follow the line's mark")
    body = source[1:]
    if body.endswith(" "):
        raise NotationError("the blank at the end of a line is written '\\s'")
    backslashes = len(body) - len(body.rstrip("\\"))
    if backslashes % 2 == 0:
        return decode(body) + "\n"
    text = decode(body[:-1])
    if text == "":
        raise NotationError("neither text nor line end")
    return text


def matches(expected, actual):
    """Whether the bytes of `actual` are those of `expected`, each POINTER standing for some pointer."""
    if POINTER not in expected:
        return expected == actual
    expected_lines = split_lines(expected)
    actual_lines = split_lines(actual)
    return len(expected_lines) == len(actual_lines) and all(map(_line_matches, expected_lines, actual_lines))


def _line_matches(expected, actual):
    if POINTER not in expected:
        return expected == actual
    return re.fullmatch(_POINTER_REGEX.join(map(re.escape, expected.split(POINTER))), actual) is not None


def hide_pointers(text):
    """The text with POINTER for whatever looks like an address of the process."""
    return _POINTER_VALUE.sub(POINTER, text)


def borrow_pointers(expected_lines, actual_lines):
    """The actual lines, written as the expected ones where those match, so that a difference shows only differences."""
    with_pointers = [line for line in expected_lines if POINTER in line]
    return [next((e for e in with_pointers if _line_matches(e, a)), a) for a in actual_lines]
