#!/usr/bin/env python3
"""Makes every call of the machine fail, once and always, and holds each run to an end without crash, hang or leak.

    fault_sweep.py --binary KORVEX --work DIRECTORY

A first run of each command line counts its calls; then each operation fails at its first, its last and some of its other
occurrences, in turn as a failure, as access denied and as a success that hands out nothing, and then at all of them.
"""

import argparse
import concurrent.futures
import json
import os
import pathlib
import sys

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent / "transcripts"))

from runner.audit import audit_problems
from runner.launch import Launcher
from runner.scene import Scene
from runner.transcript import Setting

ROOT = pathlib.Path(__file__).resolve().parent.parent
WWN = "60a1b2c3000d4e5f0000000000000a01"
COMMAND_LINES = [
    ["korvex", "-t", "-a"],
    ["korvex", "-w", WWN + ",A"],
    ["korvex", "-g", "0", "extended"],
    ["korvex", "-D"],
    ["korvex", "-d", "1", "-e", "2", "-s", "forcerebalance", "-s", "busscan"],
]
STATUSES = {0, 1, 255}
FAILED, DENIED, WIN32_FAILED = 0x80041001, 0x80041003, 8
# Codes of these are no HRESULTs, and they hand out nothing that a success could leave out.
PLAIN = {"GetComputerNameExW", "GetTimeFormatW", "GetDateFormatW", "FileTimeToSystemTime", "CM_Locate_DevNode_ExW",
         "CM_Reenumerate_DevNode_Ex", "fopen"}
HANDING_OUT = {"ConnectServer", "GetObject", "CreateInstanceEnum", "ExecQuery", "ExecMethod", "Next", "Clone", "Get",
               "SpawnInstance", "GetMethod", "NextMethod"}


def occurrences(count):
    """All of a few calls; of many the first, the last and every seventh."""
    return [n for n in range(1, count + 1) if count <= 12 or n <= 4 or n > count - 2 or n % 7 == 0]


def codes(operation):
    if operation in PLAIN:
        return [WIN32_FAILED]
    return [FAILED, DENIED] + (["nothing"] if operation in HANDING_OUT else [])


def rules(operation, count):
    kinds = codes(operation)
    once = [{"operation": operation, "occurrence": n, "give": kinds[n % len(kinds)]} for n in occurrences(count)]
    return once + [{"operation": operation, "give": code} for code in kinds] + [{"operation": operation, "delay": 7000}]


class Sweep:
    def __init__(self, binary, work):
        self._launcher = Launcher(binary)
        self._work = pathlib.Path(work)

    def run(self, name, words, rule):
        """One run; gives the host's account and what is wrong with the run."""
        scene = Scene(self._work / name, self._launcher, [ROOT / "hosts"])
        scene.apply(Setting(0, "host", "two-healthy-arrays"))
        scene.apply(Setting(0, "patch", {"faults": [rule] if rule else []}))
        scene.start_audit()
        outcome = self._launcher.run_apart(scene.directory, words, b"", 60)
        accounts = scene.read_audit()
        problems = audit_problems(accounts)
        if outcome.status not in STATUSES:
            problems.append(f"exit {outcome.status}")
        if b"Sanitizer" in outcome.errors or b"runtime error:" in outcome.errors:
            problems.append(outcome.errors.decode(errors="replace"))
        return (accounts[0] if accounts else {"calls": {}}), problems

    def check(self, job):
        number, words, rule = job
        _, problems = self.run(f"run-{number}-{os.getpid()}", words, rule)
        return [f"{' '.join(words)} with {json.dumps(rule)}: {problem}" for problem in problems]


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--binary", required=True)
    parser.add_argument("--work", required=True)
    options = parser.parse_args()
    sweep = Sweep(options.binary, options.work)

    jobs = []
    for words in COMMAND_LINES:
        account, problems = sweep.run("count", words, None)
        if problems or not account["calls"]:
            sys.exit(f"{' '.join(words)} without faults: {problems or 'no calls'}")
        jobs += [(words, rule) for operation, count in account["calls"].items() for rule in rules(operation, count)]
    numbered = [(number, words, rule) for number, (words, rule) in enumerate(jobs)]
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        problems = [problem for found in pool.map(sweep.check, numbered) for problem in found]
    print("\n".join(problems) if problems else f"{len(jobs)} runs with faults ended as they should")
    sys.exit(1 if problems else 0)


if __name__ == "__main__":
    main()
