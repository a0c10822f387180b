#!/usr/bin/env python3
"""Replays transcripts against korvex and says where the two differ. README.md describes what a transcript holds."""

import argparse
import concurrent.futures
import difflib
import pathlib
import shutil
import sys

from runner.audit import audit_problems
from runner.compare import problems_of, run_twice
from runner.launch import Launcher
from runner.notation import TranscriptError
from runner.rewrite import block_of
from runner.scene import Scene
from runner.transcript import Command, parse

HERE = pathlib.Path(__file__).resolve().parent
ROOT = HERE.parents[1]


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("paths", nargs="*", type=pathlib.Path, default=[HERE], metavar="FILE",
                        help="transcripts or directories of transcripts (default: all)")
    parser.add_argument("--binary", type=pathlib.Path, default=ROOT / "build/dev/korvex", help="the program")
    parser.add_argument("--hosts", type=pathlib.Path, nargs="*", default=[ROOT / "hosts"],
                        help="directories of host descriptions")
    parser.add_argument("--work", type=pathlib.Path, default=ROOT / "build/transcripts",
                        help="where the program runs; what a failed transcript left stays there")
    parser.add_argument("--printed", type=pathlib.Path, help="a directory to add all that was printed to")
    parser.add_argument("--timeout", type=float, default=20, help="how many seconds a command may take")
    parser.add_argument("--jobs", type=int, default=2)
    parser.add_argument("--rewrite", action="store_true",
                        help="make what the program does now what is expected, after showing the difference")
    options = parser.parse_args()
    if options.rewrite and options.paths == [HERE]:
        parser.error("--rewrite needs the transcripts to be named")
    files = [file for path in options.paths for file in (sorted(path.rglob("*.transcript")) if path.is_dir() else [path])]
    if not files:
        sys.exit("no transcript found")
    with concurrent.futures.ThreadPoolExecutor(options.jobs) as pool:
        good = list(pool.map(lambda file: handle(file, options), files))
    if len(files) > 1:
        print(f"{sum(good)} of {len(files)} transcripts hold")
    sys.exit(0 if all(good) else 1)


def handle(file, options):
    """Replays one transcript; True when it holds. Output comes in one piece, as several run at once."""
    try:
        report = rewrite(file, options) if options.rewrite else check(file, options)
        good = not report or options.rewrite
    except TranscriptError as error:
        report, good = [f"{file}:{error}"], False
    print("".join(f"{line}\n" for line in report), end="", flush=True)
    return good


def runs_of(file, options):
    """Each command of a transcript with its case and what came of it."""
    place = options.work / name_of(file)
    shutil.rmtree(place, ignore_errors=True)
    launcher = Launcher(options.binary, options.timeout)
    for number, case in enumerate(parse(file.read_text())):
        scenes = [Scene(place / str(number) / name, launcher, options.hosts) for name in ("apart", "together")]
        for step in launcher.program.possible(case.steps):
            try:
                if isinstance(step, Command):
                    yield case, step, run_twice(step, *scenes)
                    continue
                for scene in scenes:
                    scene.apply(step.word, step.text, step.content)
            except TranscriptError as error:
                raise TranscriptError(f"{step.line}: {error}") from error


def name_of(file):
    path = file.resolve().with_suffix("")
    return str(path.relative_to(HERE)).replace("/", ".") if path.is_relative_to(HERE) else path.name


def keep_printed(path, outcome):
    for suffix, text in ((".stdout", outcome.output), (".stderr", outcome.errors)):
        with open(f"{path}{suffix}", "a", encoding="latin-1", newline="") as kept:
            kept.write(text + "\n")


def check(file, options):
    report = []
    for case, command, run in runs_of(file, options):
        if options.printed:
            keep_printed(options.printed / name_of(file), run.apart)
        problems = problems_of(command, run)
        if problems:
            title = f" ({case.title})" if case.title else ""
            report += [f"{file}:{command.line}{title}: in {run.scene.directory}", *problems, ""]
    if not report:
        shutil.rmtree(options.work / name_of(file), ignore_errors=True)
    return report


def rewrite(file, options):
    before = file.read_text().splitlines()
    after, leaks = [], []
    copied = 0
    for _, command, run in runs_of(file, options):
        if None in (run.apart.status, run.together.status):
            raise TranscriptError(f"{command.line}: it took too long")
        after += before[copied:command.line - 1] + block_of(command, run, before[command.line - 1])
        copied = command.last
        leaks += [f"{file}:{command.line}: {problem}"
                  for problem in audit_problems(run.accounts, run.apart.status, run.scene.program)]
    after += before[copied:]
    file.write_text("\n".join(after) + "\n")
    return list(difflib.unified_diff(before, after, f"{file} (before)", f"{file} (rewritten)", lineterm="")) + leaks


if __name__ == "__main__":
    main()
