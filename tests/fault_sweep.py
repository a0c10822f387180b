#!/usr/bin/env python3
"""Makes every call of the machine fail, once and always, and holds each run to an end without crash, hang or leak.

    fault_sweep.py --binary KORVEX --work DIRECTORY

A first run of each command line counts its calls; then each operation fails at its first, its last and some of its other
occurrences, in turn as a failure, as access denied and as a success that hands out nothing, and then at all of them.
Where the record files of present arrays are to stay, each must be there afterwards with the name and the paths that it held
(a scan that cannot learn a controller's state writes that it is unknown).
"""

import argparse
import concurrent.futures
import json
import os
import pathlib
import shutil
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
# These begin with the record files that an earlier scan has left.
KEEPING_RECORDS = [(host, ["korvex", *words]) for host in ("gen1-two-healthy-arrays", "two-healthy-arrays")
                   for words in (["-S"], ["-c", "missing"])]
DELETING_RECORDS = [("gen1-two-healthy-arrays", ["korvex", "-c", "Atlas", "-c"])]
STATUSES = {0, 1, 255}
# The transport's failure, as a plain one can be a DSM's way to say that it has no such module.
FAILED, DENIED, WIN32_FAILED = 0x80041015, 0x80041003, 8
# Codes of these are no HRESULTs, and they hand out nothing that a success could leave out.
PLAIN = {"GetComputerNameExW", "GetTimeFormatW", "GetDateFormatW", "FileTimeToSystemTime", "CM_Locate_DevNode_ExW",
         "CM_Reenumerate_DevNode_Ex", "fopen", "CreateFileW", "DeviceIoControl", "RegOpenKeyExW", "RegQueryInfoKeyW",
         "RegEnumKeyExW", "RegSetValueExW", "RegDeleteKeyW", "RegCloseKey"}
# Where a record's name begins, behind the states of the controllers.
NAME_COLUMN = 54
# The host does not count these, so that the first of each fail.
UNCOUNTED = dict.fromkeys(["CreateFileA", "ReadFile", "WriteFile", "SetFilePointer", "FlushFileBuffers", "CloseHandle",
                           "DeleteFileA", "FindFirstFileA", "FindNextFileA", "GetModuleFileNameA", "CreateThread"], 7)
HANDING_OUT = {"ConnectServer", "GetObject", "CreateInstanceEnum", "ExecQuery", "ExecMethod", "Next", "Clone", "Get",
               "SpawnInstance", "GetMethod", "NextMethod", "RegOpenKeyExW"}


def occurrences(count):
    """All of a few calls; of many the first, the last and some between."""
    step = 7 if count <= 60 else 31
    return [n for n in range(1, count + 1) if count <= 8 or n <= 3 or n == count or n % step == 0]


def rules(operation, count):
    codes = [WIN32_FAILED] if operation in PLAIN or operation in UNCOUNTED else [FAILED, DENIED]
    codes += ["nothing"] if operation in HANDING_OUT else [0] if operation == "QueryInterface" else []
    once = [{"operation": operation, "occurrence": n, "give": codes[n % len(codes)]} for n in occurrences(count)]
    return once + [{"operation": operation, "give": code} for code in codes] + [{"operation": operation, "delay": 7000}]


def run(launcher, work, name, job, rule, records):
    """One run; gives how often each operation was called, the record files that it left and what is wrong with it."""
    host, words = job
    scene = Scene(work / name, launcher, [ROOT / "hosts"])
    scene.apply("host", host)
    scene.apply("patch", json.dumps({"faults": [rule] if rule else []}))
    for record, content in records.items():
        scene.apply("file", record, content)
    outcome, accounts = scene.run(words)
    problems = audit_problems(accounts, outcome.status, scene.program)
    if outcome.status not in STATUSES:
        problems.append(f"exit {outcome.status}")
    if "Sanitizer" in outcome.errors or "runtime error:" in outcome.errors:
        problems.append(outcome.errors)
    left = {record: content for record, content in scene.contents().items() if record.endswith(".wwn")}
    if job in KEEPING_RECORDS:
        problems += [f"{record} was {content!r} and is {left.get(record)!r}" for record, content in records.items()
                     if left.get(record, "")[NAME_COLUMN:] != content[NAME_COLUMN:]]
    if not problems:
        shutil.rmtree(scene.directory)
    calls = accounts[0]["calls"] if accounts else {}
    return calls, left, [f"{' '.join(words)} on {host} with {rule}: {text}" for text in problems]


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--binary", required=True)
    parser.add_argument("--work", required=True, type=pathlib.Path)
    options = parser.parse_args()
    launcher = Launcher(options.binary, timeout=60)

    jobs = []
    for job in COMMAND_LINES + KEEPING_RECORDS + DELETING_RECORDS:
        records, uncounted = {}, {}
        if job in KEEPING_RECORDS + DELETING_RECORDS:
            uncounted = UNCOUNTED
            records = run(launcher, options.work, "first scan", (job[0], ["korvex", "-S"]), None, {})[1]
        calls, _, problems = run(launcher, options.work, "count", job, None, records)
        if problems or not calls:
            sys.exit("\n".join(problems) or f"{' '.join(job[1])} calls nothing")
        jobs += [(job, rule, records) for operation, count in (calls | uncounted).items()
                 for rule in rules(operation, count)]
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        runs = [pool.submit(run, launcher, options.work, f"run-{n}", *job) for n, job in enumerate(jobs)]
        problems = [problem for ended in runs for problem in ended.result()[2]]
    print("\n".join(problems) if problems else f"{len(jobs)} runs with faults ended as they should")
    sys.exit(1 if problems else 0)


if __name__ == "__main__":
    main()
