#!/usr/bin/env python3
"""Looks into korvex.exe: it needs the system's own DLLs only, asks for no more rights, and tells its version."""

import re
import subprocess
import sys

OF_THE_SYSTEM = {"ADVAPI32.dll", "CFGMGR32.dll", "KERNEL32.dll", "msvcrt.dll", "ole32.dll", "OLEAUT32.dll"}


def main(objdump, program, version):
    listing = subprocess.run([objdump, "-p", program], stdout=subprocess.PIPE, text=True, check=True).stdout
    needed = set(re.findall(r"DLL Name: (\S+)", listing))
    with open(program, "rb") as file:
        content = file.read()
    problems = [f"needs {name}" for name in sorted(needed - OF_THE_SYSTEM)]
    problems += [] if needed else ["no import table found"]
    problems += [] if b'level="asInvoker"' in content else ["no manifest that asks for the invoker's rights"]
    told = "FileVersion\0\0".encode("utf-16-le") + version.encode("utf-16-le")
    problems += [] if told.replace(b"\0", b"") in content.replace(b"\0", b"") else [f"does not tell version {version}"]
    sys.exit("\n".join(f"{program}: {problem}" for problem in problems) or 0)


if __name__ == "__main__":
    main(*sys.argv[1:])
