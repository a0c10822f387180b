#!/usr/bin/env python3
"""Does what the README tells a newcomer to do first, on a clean checkout, and holds what comes of it against what it shows."""

import difflib
import pathlib
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parents[1]


def main():
    shown = re.search(r"^A first `script/run` prints:\n\n```\n(.*?)^```$", (ROOT / "README.md").read_text(), re.DOTALL | re.MULTILINE)
    if not shown:
        sys.exit("README.md no longer shows what a first script/run prints")
    run = subprocess.run(["script/run"], cwd=ROOT, stdout=subprocess.PIPE, check=False)
    difference = list(difflib.unified_diff(shown[1].splitlines(True), run.stdout.decode().splitlines(True), "README.md", "script/run"))
    sys.stdout.writelines(difference)
    # A listing ends with the status of a sound start.
    if difference or run.returncode != 1:
        sys.exit(f"script/run ended with {run.returncode} and printed {'something else' if difference else 'what it should'}")


main()
