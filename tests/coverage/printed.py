"""Tells which messages a printed text holds."""

import re

from .formats import fixed_text, pattern_of, sample_of
from .messages import ERRORS, OUTPUT


class PrintedTexts:
    """All that the tests have printed on each stream."""

    def __init__(self, directory):
        self._texts = {stream: "\n".join(path.read_bytes().decode("latin-1")
                                         for path in sorted(directory.glob(f"*.{stream}")))
                       for stream in (OUTPUT, ERRORS)}

    def is_empty(self):
        return not any(self._texts.values())

    def unprinted(self, messages):
        """The messages that stand nowhere, or only where a longer message explains the text as well."""
        unprinted = []
        for message in messages:
            longer = [other for other in messages if _explains(other, message)]
            if not any(self._holds(stream, message, longer) for stream in message.streams):
                unprinted.append(message)
        return unprinted

    def _holds(self, stream, message, longer):
        text = self._texts[stream]
        covered = None
        for match in _compiled(message).finditer(text):
            if covered is None:
                covered = [other.span() for m in longer if stream in m.streams for other in _compiled(m).finditer(text)]
            if not any(start <= match.start() and match.end() <= end for start, end in covered):
                return True
        return False


_patterns = {}


def _pattern(message):
    return re.escape(message.tag) + pattern_of(message.format)


def _compiled(message):
    pattern = _pattern(message)
    if pattern not in _patterns:
        _patterns[pattern] = re.compile(pattern)
    return _patterns[pattern]


def _explains(longer, message):
    """Whether the text of `message` also stands in what `longer` prints."""
    return (len(longer.tag + fixed_text(longer.format)) > len(message.tag + fixed_text(message.format))
            and _compiled(message).search(longer.tag + sample_of(longer.format)) is not None)
