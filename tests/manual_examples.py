#!/usr/bin/env python3
"""Replays the examples of docs/manual.md, so that the manual shows what the program does.

An example is a block fenced with ```console, right behind comments that set its scene: `<!-- host NAME -->` for a directory
of its own or `<!-- same host -->` to go on in that of the example before, then whatever else a transcript may set, such as
`<!-- edit POINTER = JSON -->`. It holds command lines, `$ korvex WORDS` and `$ echo $?`, each with what it prints on both
streams. Blanks at the end of a line do not count, and a line `...` stands for any lines.
"""

import argparse
import difflib
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parents[1]
sys.path.insert(0, str(ROOT / "tests/transcripts"))

from runner.launch import Launcher
from runner.notation import TranscriptError
from runner.scene import Scene
from runner.transcript import split_words

BLOCK = re.compile(r"((?:^<!--[^\n]*-->\n+)*)^```console\n(.*?)^```$", re.MULTILINE | re.DOTALL)
COMMAND = re.compile(r"^\$ (.*)\n((?:(?!\$ ).*\n)*)", re.MULTILINE)
KORVEX = re.compile(r"^\W*\$ korvex", re.MULTILINE)


def problems_of(manual, new_scene):
    """What is wrong with the examples in the text of a manual; `new_scene` gives a fresh directory."""
    scene, problems, replayed = None, [], 0
    for block in BLOCK.finditer(manual):
        try:
            scene = scene_for(re.findall("<!-- *(.*?) *-->", block[1]), scene, new_scene)
            found = list(replay(block[2], scene))
        except TranscriptError as error:
            found = [error]
        problems += [f"{manual.count(chr(10), 0, block.start(2))}: {problem}" for problem in found]
        replayed += len(KORVEX.findall(block[2]))
    if replayed == 0 or replayed != len(KORVEX.findall(manual)):
        problems.append(f"0: {replayed} of {len(KORVEX.findall(manual))} command lines stand in console blocks")
    return problems


def scene_for(settings, scene, new_scene):
    if settings[:1] != ["same host"]:
        if not settings or not settings[0].startswith("host "):
            raise TranscriptError("the first comment before an example says its host")
        scene = new_scene()
        scene.apply("host", settings[0].removeprefix("host "))
    elif scene is None:
        raise TranscriptError("there is no host yet")
    for word, _, text in (setting.partition(" ") for setting in settings[1:]):
        scene.apply(word, text)
    return scene


def replay(body, scene):
    status = None
    if not body.startswith("$ korvex") or re.search(r"^\$ (?!korvex |korvex$|echo \$\?$)", body, re.MULTILINE):
        raise TranscriptError("an example holds command lines of korvex and `echo $?` behind them")
    for command, shown in COMMAND.findall(body):
        if command == "echo $?":
            printed = f"{status}\n"
        else:
            (status, printed, _), _ = scene.run(split_words(command), together=True)
        expected, actual = ([line.rstrip() for line in text.splitlines()] for text in (shown, printed))
        pattern = "".join(r"(?:.*\n)*" if line == "..." else re.escape(line) + r"\n" for line in expected)
        if status is None or not re.fullmatch(pattern, "".join(line + "\n" for line in actual)):
            yield "\n".join([command, *difflib.unified_diff(expected, actual, "manual", f"exit {status}", n=1, lineterm="")])


if __name__ == "__main__":
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--binary", type=pathlib.Path, default=ROOT / "build/dev/korvex")
    parser.add_argument("--work", type=pathlib.Path, default=ROOT / "build/manual_examples")
    options = parser.parse_args()
    directory = lambda: Scene(options.work, Launcher(options.binary, timeout=20), [ROOT / "hosts"])
    wrong = problems_of((ROOT / "docs/manual.md").read_text(), directory)
    sys.exit("\n".join(f"docs/manual.md:{problem}" for problem in wrong) or 0)
