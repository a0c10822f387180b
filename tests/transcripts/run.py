#!/usr/bin/env python3
"""Replays transcripts against korvex and says where the two differ. README.md describes what a transcript holds."""

import argparse
import concurrent.futures
import difflib
import pathlib
import shutil
import sys

from runner.audit import audit_problems
from runner.compare import problems_of
from runner.launch import Launcher
from runner.notation import NotationError
from runner.parse import TranscriptError, parse
from runner.replay import replay
from runner.rewrite import block_of
from runner.scene import SceneError
from runner.transcript import STANDARD_ERROR, STANDARD_OUTPUT

HERE = pathlib.Path(__file__).resolve().parent
ROOT = HERE.parents[1]
SUFFIX = ".transcript"


def main():
    options = read_options()
    files = [file for path in options.paths for file in transcripts_at(path)]
    if not files:
        sys.exit("no transcript found")
    launcher = Launcher(options.binary)
    with concurrent.futures.ThreadPoolExecutor(options.jobs) as pool:
        good = list(pool.map(lambda file: handle(file, launcher, options), files))
    if len(files) > 1:
        print(f"{sum(good)} of {len(files)} transcripts hold")
    sys.exit(0 if all(good) else 1)


def read_options():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("paths", nargs="*", type=pathlib.Path, default=[HERE], metavar="FILE",
                        help="transcripts or directories of transcripts (default: all)")
    parser.add_argument("--binary", type=pathlib.Path, default=ROOT / "build/dev/korvex", help="the program")
    parser.add_argument("--hosts", type=pathlib.Path, nargs="*", default=[ROOT / "hosts", HERE / "hosts"],
                        help="directories of host descriptions")
    parser.add_argument("--work", type=pathlib.Path, default=ROOT / "build/transcripts",
                        help="where the program runs; what a failed transcript left stays there")
    parser.add_argument("--printed", type=pathlib.Path, help="a directory to add all that was printed to")
    parser.add_argument("--jobs", type=int, default=2)
    parser.add_argument("--rewrite", action="store_true",
                        help="make what the program does now what is expected, after showing the difference")
    options = parser.parse_args()
    if options.rewrite and options.paths == [HERE]:
        parser.error("--rewrite needs the transcripts to be named")
    return options


def transcripts_at(path):
    return sorted(path.rglob("*" + SUFFIX)) if path.is_dir() else [path]


def handle(file, launcher, options):
    """Replays one transcript; True when it holds. Output comes in one piece, as several run at once."""
    try:
        report = rewrite(file, launcher, options) if options.rewrite else check(file, launcher, options)
    except (TranscriptError, SceneError, NotationError) as error:
        report = [f"{file}:{error}"]
    if report:
        print("\n".join(report), flush=True)
    return not report or options.rewrite


def runs_of(file, launcher, options):
    """Each command of a transcript with what came of it."""
    place = options.work / name_of(file)
    shutil.rmtree(place, ignore_errors=True)
    for number, case in enumerate(parse(file.read_text())):
        if not case.commands():
            raise TranscriptError(f"case '{case.title}' runs nothing")
        for command, run in replay(case, launcher, place / str(number), options.hosts):
            if options.printed:
                keep_printed(options.printed / name_of(file), run)
            yield case, command, run


def name_of(file):
    path = file.resolve().with_suffix("")
    return str(path.relative_to(HERE)).replace("/", ".") if path.is_relative_to(HERE) else path.name


def keep_printed(path, run):
    for stream, suffix in ((STANDARD_OUTPUT, ".stdout"), (STANDARD_ERROR, ".stderr")):
        with open(f"{path}{suffix}", "a", encoding="latin-1", newline="") as kept:
            kept.write(run.streams[stream] + "\n")


def check(file, launcher, options):
    report = []
    for case, command, run in runs_of(file, launcher, options):
        problems = problems_of(command, run)
        if problems:
            title = f" ({case.title})" if case.title else ""
            report += [f"{file}:{command.line}{title}: in {run.scene.directory}", *problems, ""]
    if not report:
        shutil.rmtree(options.work / name_of(file), ignore_errors=True)
    return report


def rewrite(file, launcher, options):
    before = file.read_text().splitlines()
    after = []
    leaks = []
    copied = 0
    for _, command, run in runs_of(file, launcher, options):
        if None in (run.status, run.status_together):
            raise TranscriptError(f"{command.line}: it took too long")
        after += before[copied:command.first] + block_of(command, run, before)
        copied = command.last
        if run.audited:
            leaks += [f"{file}:{command.line}: {problem}" for problem in audit_problems(run.accounts)]
    after += before[copied:]
    file.write_text("\n".join(after) + "\n")
    return list(difflib.unified_diff(before, after, f"{file} (before)", f"{file} (rewritten)", lineterm="")) + leaks


if __name__ == "__main__":
    main()
