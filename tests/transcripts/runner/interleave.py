"""Which stream each piece of a common output came from."""

from .notation import hide_pointers
from .transcript import STANDARD_ERROR, STANDARD_OUTPUT, Piece


def interleave(streams, together):
    """Pieces of the two streams in the order of the common output, or None when that is no mixture of the two.

    Where the output could have come from either, a stream goes on to the end of its line, and standard output goes
    first.
    """
    texts = {stream: hide_pointers(text) for stream, text in streams.items()}
    together = hide_pointers(together)
    if sum(map(len, texts.values())) != len(together):
        return None
    return _search(texts, together)


def _search(texts, together):
    """Depth first, without recursion: `choices` holds the pieces taken so far with the streams still untried there."""
    order = (STANDARD_OUTPUT, STANDARD_ERROR)
    at = dict.fromkeys(order, 0)
    taken = []
    choices = [list(order)]
    dead_ends = set()
    while sum(at.values()) < len(together):
        while choices[-1]:
            stream = choices[-1].pop(0)
            length = _common_piece(texts[stream], at[stream], together, sum(at.values()))
            after = {**at, stream: at[stream] + length}
            if length > 0 and tuple(after.values()) not in dead_ends:
                taken.append(Piece(stream, texts[stream][at[stream]:after[stream]]))
                at = after
                choices.append([stream] + [other for other in order if other != stream])
                break
        else:
            dead_ends.add(tuple(at.values()))
            choices.pop()
            if not taken:
                return None
            piece = taken.pop()
            at = {**at, piece.stream: at[piece.stream] - len(piece.text)}
    return _joined(taken)


def _common_piece(text, at, together, position):
    """How much of the stream's current line the common output goes on with."""
    end = text.find("\n", at) + 1 or len(text)
    length = 0
    while at + length < end and together[position + length:position + length + 1] == text[at + length]:
        length += 1
    return length


def _joined(pieces):
    """Pieces of one line that follow each other on one stream are one."""
    joined = []
    for piece in pieces:
        if joined and joined[-1].stream == piece.stream and not joined[-1].text.endswith("\n"):
            joined[-1].text += piece.text
        else:
            joined.append(piece)
    return joined
