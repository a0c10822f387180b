#!/usr/bin/env python3
"""Holds every #include of the sources against the arrows that the rooms of the house may have.

Prints each violation as file:line and fails if there is one.
"""

import pathlib
import re
import sys

GROUND = ("wmi", "platform")
BELOW_REPORTS = ("app/inventory", "app/options", "app/channel", "app/cli/console", *GROUND)

# What each room may include beside itself. A room is a directory with all below it that is no room of its own.
ROOMS = {
    "app": ("app/cli", "app/cli/console"),
    "app/cli": ("app/report", "app/settings", "app/records", "app/mpio", *BELOW_REPORTS),
    "app/report": BELOW_REPORTS,
    "app/settings": BELOW_REPORTS,
    "app/records": BELOW_REPORTS,
    "app/mpio": BELOW_REPORTS,
    "app/inventory": ("app/channel", "app/cli/console", *GROUND),
    "app/options": ("app/channel", "app/cli/console", *GROUND),
    "app/channel": ("app/cli/console", *GROUND),
    "app/cli/console": GROUND,
    "wmi": ("platform",),
    "platform": (),
    "platform/posix": ("platform",),
    "platform/windows": ("platform",),
    "simhost": ("platform", "platform/posix/machine.h"),
}

# These compile unchanged for every system: they may include nothing in angle brackets but the standard library.
PORTABLE = ("app", "wmi")
STANDARD_LIBRARY = re.compile("[a-z_]+")  # no header of a system is without a suffix
INCLUDE = re.compile(r'\s*#\s*include\s*(?:"([^"]*)"|<([^>]*)>|(.*))')
SYSTEM_TEST = re.compile(r"\s*#\s*(?:if|ifdef|ifndef|elif)\b.*\b(_WIN32|_WIN64|WIN32|__linux__|__unix__)\b")


def room_of(path):
    """The innermost room that a path lies in, or None."""
    rooms = [room for room in ROOMS if path == room or path.startswith(room + "/")]
    return max(rooms, key=len, default=None)


def complaint(root, room, line):
    """What is wrong with a line of a file in the room, or None."""
    is_portable = room.partition("/")[0] in PORTABLE
    if is_portable and (test := SYSTEM_TEST.match(line)):
        return f"asks for {test[1]}: {room}/ compiles unchanged for every system"
    include = INCLUDE.match(line)
    if not include:
        return None
    quoted, bracketed, computed = include.groups()
    if computed is not None:
        return "a computed #include cannot be checked"
    if quoted is not None:
        if not (root / quoted).is_file():
            return f'"{quoted}" is no file, seen from the root of the tree'
        if not {quoted, room_of(quoted)} & {room, *ROOMS[room]}:
            return f'{room}/ may not include "{quoted}"'
    elif is_portable and not STANDARD_LIBRARY.fullmatch(bracketed):
        return f"{room}/ may not include <{bracketed}>, which is not of the C++ standard library"
    elif bracketed.startswith("nlohmann/") and room != "simhost":
        return f"<{bracketed}> is for simhost/ alone"
    return None


def violations(root):
    sources = sorted(path for top in {room.partition("/")[0] for room in ROOMS}
                     for path in (root / top).rglob("*") if path.suffix in (".h", ".cpp"))
    if not sources:
        yield f"{root}: no sources"
    for source in sources:
        name = str(source.relative_to(root))
        for number, line in enumerate(source.read_text(encoding="utf-8").splitlines(), 1):
            problem = complaint(root, room_of(name), line)
            if problem:
                yield f"{name}:{number}: {problem}"


def main():
    root = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else pathlib.Path(__file__).parents[1]).resolve()
    found = list(violations(root))
    print("\n".join(found), end="\n" if found else "")
    sys.exit(1 if found else 0)


if __name__ == "__main__":
    main()
