"""Which stream each piece of a common output came from."""

from os.path import commonprefix

from .notation import hide_pointers
from .transcript import STANDARD_ERROR, STANDARD_OUTPUT, Piece


def interleave(output, errors, together):
    """Pieces of the two streams in the order of the common output, or None when that is no mixture of the two.

    Where the output could have come from either, a stream goes on to the end of its line, and standard output goes
    first.
    """
    texts = {STANDARD_OUTPUT: hide_pointers(output), STANDARD_ERROR: hide_pointers(errors)}
    together = hide_pointers(together)
    whole = tuple(map(len, texts.values()))
    way = {(0, 0): None}  # how far each stream has come: the step that led there, as place before and piece
    open_ends = [((0, 0), STANDARD_OUTPUT)]
    while open_ends and whole not in way:
        at, current = open_ends.pop()
        for stream in sorted(texts, key=lambda stream: stream == current):
            place = at[stream == STANDARD_ERROR]
            line = texts[stream][place:texts[stream].find("\n", place) + 1 or None]
            piece = commonprefix([line, together[sum(at):sum(at) + len(line)]])
            after = (at[0] + len(piece), at[1]) if stream == STANDARD_OUTPUT else (at[0], at[1] + len(piece))
            if after not in way:
                way[after] = at, Piece(stream, piece)
                open_ends.append((after, stream))
    if whole not in way or sum(whole) != len(together):
        return None
    return _pieces(way, whole)


def _pieces(way, place):
    """The pieces that led there; those of one line that follow each other on one stream are one."""
    pieces = []
    while way[place]:
        place, piece = way[place]
        if pieces and pieces[-1].stream == piece.stream and not piece.text.endswith("\n"):
            pieces[-1] = Piece(piece.stream, piece.text + pieces[-1].text)
        else:
            pieces.append(piece)
    return pieces[::-1]
