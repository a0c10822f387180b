"""Changes to a host description, so that one host serves many cases."""

from .transcript import ABSENT


class EditError(Exception):
    """A change that does not fit the description."""


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
    if not pointer.startswith("/"):
        raise EditError(f"'{pointer}' is no JSON pointer")
    *path, last = (step.replace("~1", "/").replace("~0", "~") for step in pointer[1:].split("/"))
    place = document
    for step in path:
        place = _child(place, step, pointer)
    if isinstance(place, dict):
        _edit_object(place, last, value, pointer)
    elif isinstance(place, list):
        _edit_list(place, last, value, pointer)
    else:
        raise EditError(f"{pointer} leads through a plain value")


def _child(place, step, pointer):
    try:
        return place[int(step)] if isinstance(place, list) else place[step]
    except (KeyError, IndexError, ValueError, TypeError):
        raise EditError(f"{pointer} leads nowhere at '{step}'") from None


def _edit_object(place, key, value, pointer):
    if value is not ABSENT:
        place[key] = value
    elif place.pop(key, ABSENT) is ABSENT:
        raise EditError(f"{pointer} is not there to be removed")


def _edit_list(place, step, value, pointer):
    if step == "-" and value is not ABSENT:
        place.append(value)
        return
    _child(place, step, pointer)
    if value is ABSENT:
        del place[int(step)]
    else:
        place[int(step)] = value
