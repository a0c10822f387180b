"""Changes to a host description, so that one host serves many cases."""

from .notation import TranscriptError
from .transcript import ABSENT


def merge_patch(target, patch):
    """RFC 7386: objects are merged, null removes, anything else replaces."""
    if not isinstance(patch, dict):
        return patch
    merged = dict(target) if isinstance(target, dict) else {}
    for key, value in patch.items():
        if value is None:
            merged.pop(key, None)
        else:
            merged[key] = merge_patch(merged.get(key), value)
    return merged


def edit(document, pointer, value):
    """Sets or, with ABSENT, removes what a JSON pointer (RFC 6901) names; "-" names the place behind a list's end."""
    root, *path, last = (step.replace("~1", "/").replace("~0", "~") for step in pointer.split("/"))
    try:
        place = document
        for step in path:
            place = place[_key(place, step)]
        if value is ABSENT:
            del place[_key(place, last)]
        elif last == "-" and isinstance(place, list):
            place.append(value)
        else:
            place[_key(place, last)] = value
    except (LookupError, ValueError, TypeError):
        root = "a missing place"
    if root:
        raise TranscriptError(f"{pointer} leads nowhere")


def _key(place, step):
    return int(step) if isinstance(place, list) else step
