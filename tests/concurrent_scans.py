#!/usr/bin/env python3
"""Scans at the same time in one directory: the record files are those of one scan, and each run ends as it should.

    concurrent_scans.py --binary KORVEX --work DIRECTORY
"""

import argparse
import concurrent.futures
import pathlib
import sys

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent / "transcripts"))

from runner.launch import Launcher
from runner.scene import Scene

ROOT = pathlib.Path(__file__).resolve().parent.parent
ROUNDS, SCANS = 8, 3
# A scan may find the file that another has just made and not yet written.
MESSAGES = {"", "Unable to read Array File- No such file or directory!"}


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--binary", required=True)
    parser.add_argument("--work", required=True, type=pathlib.Path)
    options = parser.parse_args()
    launcher = Launcher(options.binary, timeout=60)
    scene = Scene(options.work, launcher, [ROOT / "hosts"])
    scene.apply("host", "two-healthy-arrays")
    scene.run(["korvex", "-S"])
    expected = scene.contents()
    problems = [] if len(expected) == 3 else ["two record files and their directory are needed"]
    with concurrent.futures.ThreadPoolExecutor(SCANS) as pool:
        for number in range(ROUNDS):
            if number % 2 == 0:  # the other rounds begin with the files of the one before
                scene.apply("remove", "WWN_FILES")
                scene.apply("directory", "WWN_FILES")
            runs = [pool.submit(launcher.run, scene.directory, ["korvex", "-S"]) for _ in range(SCANS)]
            for outcome in [run.result() for run in runs]:
                if outcome.status != 1 or not set(outcome.errors.split("\n")) <= MESSAGES:
                    problems.append(f"exit {outcome.status}: {outcome.errors}")
            if scene.contents() != expected:
                problems.append(f"round {number} leaves {scene.contents()}")
    print("\n".join(problems) if problems else f"{ROUNDS * SCANS} scans kept their records whole")
    sys.exit(1 if problems else 0)


if __name__ == "__main__":
    main()
