#!/usr/bin/env python3
"""Fails for each message of the sources that no test has printed.

    message_coverage.py PRINTED

PRINTED is the directory where transcripts and unit tests have left what they printed. The exceptions, each with its reason,
stand in message_exceptions.txt; one that is printed after all fails too. Formats with no fixed text but blanks are exempt.
"""

import ast
import pathlib
import re
import sys

from message_formats import fixed_text, unprinted_messages
from message_sources import SourceError, messages_of

ROOT = pathlib.Path(__file__).resolve().parent.parent


def main():
    try:
        problems = problems_of(pathlib.Path(sys.argv[1]), ROOT)
    except SourceError as error:
        problems = [str(error)]
    print("\n".join(problems) or "all messages were printed")
    sys.exit(1 if problems else 0)


def problems_of(printed, root):
    messages = [message for message in messages_of(root) if fixed_text(message.format).strip()]
    exceptions = read_exceptions(root / "tests/message_exceptions.txt")
    if not any(path.stat().st_size for path in printed.glob("*.std*")):
        return ["nothing was printed at all"]
    unprinted = unprinted_messages(messages, printed)
    problems = [f"{message.file}:{message.line}: no test prints {message.tag}{message.format!r}"
                for message in unprinted if (message.file, message.format) not in exceptions]
    missing = {(message.file, message.format) for message in unprinted}
    problems += [f"{place}: {text!r} of {file} is printed, or is no message any more"
                 for (file, text), place in exceptions.items() if (file, text) not in missing]
    return problems


def read_exceptions(path):
    """The excepted messages as (file, format), each with the line of the list; each needs a reason below it."""
    exceptions = {}
    lines = path.read_text(encoding="utf-8").splitlines() + [""]
    for number, line in enumerate(lines, 1):
        if line.startswith((" ", "#")) or not line:
            continue
        entry = re.fullmatch(r'(\S+): (".*")', line)
        if not entry or not lines[number].startswith(" "):
            raise SourceError(f'{path}:{number}: an exception is written \'<file>: "<format>"\', its reason indented below')
        exceptions[entry[1], ast.literal_eval(entry[2])] = f"{path.name}:{number}"
    return exceptions


if __name__ == "__main__":
    main()
