#!/usr/bin/env python3
"""Fails for each message of the sources that no test has printed.

    message_coverage.py PRINTED [ROOT]

PRINTED is the directory where transcripts and unit tests have left what they printed. The exceptions, each with its reason,
stand in message_exceptions.txt; one that is printed after all fails too. Formats with no fixed text but blanks are exempt.
"""

import pathlib
import re
import sys

from coverage.cpp_tokens import string_value
from coverage.formats import FormatError, fixed_text
from coverage.messages import SourceError, messages_of
from coverage.printed import PrintedTexts

HERE = pathlib.Path(__file__).resolve().parent
EXCEPTION = re.compile(r'(\S+): (".*")')


def main():
    printed = PrintedTexts(pathlib.Path(sys.argv[1]))
    root = pathlib.Path(sys.argv[2]) if len(sys.argv) > 2 else HERE.parent
    try:
        messages = [message for message in messages_of(root) if fixed_text(message.format).strip()]
        problems = problems_of(messages, printed, read_exceptions(root / "tests/message_exceptions.txt"))
    except (SourceError, FormatError) as error:
        problems = [str(error)]
    print("\n".join(problems) if problems else f"all of {len(messages)} messages were printed")
    sys.exit(1 if problems else 0)


def read_exceptions(path):
    """The excepted messages as (file, format), each with the line of the list; each needs a reason below it."""
    exceptions = {}
    lines = path.read_text(encoding="utf-8").splitlines() if path.is_file() else []
    for number, line in enumerate(lines, 1):
        if line.startswith((" ", "#")) or not line:
            continue
        entry = EXCEPTION.fullmatch(line)
        if not entry or number == len(lines) or not lines[number].startswith(" "):
            raise SourceError(f'{path}:{number}: an exception is written \'<file>: "<format>"\', its reason indented below')
        exceptions[entry[1], string_value(entry[2])] = f"{path.name}:{number}"
    return exceptions


def problems_of(messages, printed, exceptions):
    if printed.is_empty():
        return ["nothing was printed at all"]
    unprinted = printed.unprinted(messages)
    problems = [f"{message.file}:{message.line}: no test prints {message.format!r}"
                + (f" after {message.tag}" if message.tag else "")
                for message in unprinted if (message.file, message.format) not in exceptions]
    missing = {(message.file, message.format) for message in unprinted}
    problems += [f"{place}: {text!r} of {file} is printed, or is no message any more"
                 for (file, text), place in exceptions.items() if (file, text) not in missing]
    return problems


if __name__ == "__main__":
    main()
