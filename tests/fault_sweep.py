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

ROOT = pathlib.Path(__file__).resolve().parent.parent
WWN = "60a1b2c3000d4e5f0000000000000a01"
COMMAND_LINES = [
    ("two-healthy-arrays", ["korvex", "-t", "-a"]),
    ("two-healthy-arrays", ["korvex", "-w", WWN + ",A"]),
    ("two-healthy-arrays", ["korvex", "-g", "0", "extended"]),
    ("two-healthy-arrays", ["korvex", "-D"]),
    ("two-healthy-arrays", ["korvex", "-d", "1", "-e", "2", "-s", "forcerebalance", "-s", "busscan"]),
    ("two-healthy-arrays", ["korvex", "-P", "RetryInterval=5"]),
    ("two-healthy-arrays", ["korvex", "-M"]),
    ("stale-settings", ["korvex", "-o", "RetryInterval=7,SaveSettings"]),
    ("stale-settings", ["korvex", "-R"]),
    ("gen1-degraded-array", ["korvex", "-t", "-a", "Delphinus"]),
    ("gen1-two-healthy-arrays", ["korvex", "-w", WWN + ",A"]),
]
STATUSES = {0, 1, 255}
FAILED, DENIED, WIN32_FAILED = 0x80041001, 0x80041003, 8
# Codes of these are no HRESULTs, and they hand out nothing that a success could leave out.
PLAIN = {"GetComputerNameExW", "GetTimeFormatW", "GetDateFormatW", "FileTimeToSystemTime", "CM_Locate_DevNode_ExW",
         "CM_Reenumerate_DevNode_Ex", "fopen", "CreateFileW", "DeviceIoControl", "RegOpenKeyExW", "RegQueryInfoKeyW",
         "RegEnumKeyExW", "RegSetValueExW", "RegDeleteKeyW", "RegCloseKey"}
HANDING_OUT = {"ConnectServer", "GetObject", "CreateInstanceEnum", "ExecQuery", "ExecMethod", "Next", "Clone", "Get",
               "SpawnInstance", "GetMethod", "NextMethod", "RegOpenKeyExW"}


def occurrences(count):
    """All of a few calls; of many the first, the last and every seventh."""
    return [n for n in range(1, count + 1) if count <= 12 or n <= 4 or n > count - 2 or n % 7 == 0]


def rules(operation, count):
    codes = [WIN32_FAILED] if operation in PLAIN else [FAILED, DENIED]
    codes += ["nothing"] if operation in HANDING_OUT else []
    once = [{"operation": operation, "occurrence": n, "give": codes[n % len(codes)]} for n in occurrences(count)]
    return once + [{"operation": operation, "give": code} for code in codes] + [{"operation": operation, "delay": 7000}]


def run(launcher, work, name, host, words, rule):
    """One run; gives how often each operation was called and what is wrong with the run."""
    scene = Scene(work / name, launcher, [ROOT / "hosts"])
    scene.apply("host", host)
    scene.apply("patch", json.dumps({"faults": [rule] if rule else []}))
    outcome, accounts = scene.run(words)
    problems = audit_problems(accounts, outcome.status, scene.program)
    if outcome.status not in STATUSES:
        problems.append(f"exit {outcome.status}")
    if "Sanitizer" in outcome.errors or "runtime error:" in outcome.errors:
        problems.append(outcome.errors)
    return (accounts[0]["calls"] if accounts else {}), [f"{' '.join(words)} with {rule}: {text}" for text in problems]


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--binary", required=True)
    parser.add_argument("--work", required=True, type=pathlib.Path)
    options = parser.parse_args()
    launcher = Launcher(options.binary, timeout=60)

    jobs = []
    for host, words in COMMAND_LINES:
        calls, problems = run(launcher, options.work, "count", host, words, None)
        if problems or not calls:
            sys.exit("\n".join(problems) or f"{' '.join(words)} calls nothing")
        jobs += [(host, words, rule) for operation, count in calls.items() for rule in rules(operation, count)]
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        runs = [pool.submit(run, launcher, options.work, f"run-{n}", *job) for n, job in enumerate(jobs)]
        problems = [problem for ended in runs for problem in ended.result()[1]]
    print("\n".join(problems) if problems else f"{len(jobs)} runs with faults ended as they should")
    sys.exit(1 if problems else 0)


if __name__ == "__main__":
    main()
