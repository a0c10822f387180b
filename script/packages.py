"""Puts the programs, their documents and the notices of what is linked into them into a zip and a tar.

    packages.py KORVEX_EXE KORVEX DIRECTORY

The archives' bytes depend on the files' contents and on SOURCE_DATE_EPOCH alone.
"""

import gzip
import hashlib
import io
import os
import pathlib
import re
import sys
import tarfile
import time
import zipfile

ROOT = pathlib.Path(__file__).resolve().parents[1]

# Whose code is linked into the programs: the file that this becomes, and the Debian package that says under which terms.
NOTICES = {
    "windows": {"mingw-w64.txt": "mingw-w64-x86-64-dev", "gcc-runtime.txt": "gcc-mingw-w64-x86-64-posix-runtime"},
    "linux": {"gcc-runtime.txt": "libstdc++-12-dev", "nlohmann-json.txt": "nlohmann-json3-dev"},
}

STYLE = """body { max-width: 60em; margin: 2em auto; padding: 0 1em; font-family: sans-serif; line-height: 1.4 }
pre, code { font-family: monospace; background: #f3f3f3 }
pre { padding: .7em; overflow-x: auto }
table { border-collapse: collapse }
th, td { border: 1px solid #bbb; padding: .2em .6em; text-align: left; vertical-align: top }"""

PAGE = """<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<title>{title}</title>
<style>
{style}
</style>
</head>
<body>
{body}
</body>
</html>
"""


def html(source):
    """A page of Markdown as HTML; comments are for the tests and left out. Names of other pages become theirs."""
    import markdown  # of script/bootstrap --package; the rest of this file does without
    source = re.sub(r"<!--.*?-->\n?", "", source, flags=re.DOTALL)
    body = markdown.markdown(source, extensions=["tables", "fenced_code", "toc"], output_format="html")
    return PAGE.format(title=source.splitlines()[0].lstrip("# "), style=STYLE, body=body)


def version():
    return re.search(r"project\(korvex VERSION ([0-9.]+)", (ROOT / "CMakeLists.txt").read_text()).group(1)


def notices(system):
    return {f"notices/{name}": pathlib.Path("/usr/share/doc", package, "copyright").read_bytes()
            for name, package in NOTICES[system].items()} | {"LICENSE.txt": (ROOT / "LICENSE").read_bytes()}


def page(name):
    return html((ROOT / "docs" / name).read_text(encoding="utf-8")).encode()


def with_checksums(files):
    sums = "".join(f"{hashlib.sha256(content).hexdigest()}  {name}\n" for name, content in sorted(files.items()))
    return files | {"SHA256SUMS": sums.encode()}


def is_program(name):
    return name in ("korvex", "korvex.exe")


def zip_of(top, files, epoch):
    buffer = io.BytesIO()
    with zipfile.ZipFile(buffer, "w", zipfile.ZIP_DEFLATED, compresslevel=9) as archive:
        for name, content in sorted(files.items()):
            entry = zipfile.ZipInfo(f"{top}/{name}", time.gmtime(epoch)[:6])
            entry.create_system = 3
            entry.external_attr = (0o100755 if is_program(name) else 0o100644) << 16
            entry.compress_type = zipfile.ZIP_DEFLATED
            archive.writestr(entry, content)
    return buffer.getvalue()


def tar_of(top, files, epoch):
    buffer = io.BytesIO()
    with gzip.GzipFile("", "wb", 9, buffer, epoch) as packed:
        with tarfile.open(fileobj=packed, mode="w", format=tarfile.USTAR_FORMAT) as archive:
            for name, content in sorted(files.items()):
                entry = tarfile.TarInfo(f"{top}/{name}")
                entry.size = len(content)
                entry.mtime = epoch
                entry.mode = 0o755 if is_program(name) else 0o644
                archive.addfile(entry, io.BytesIO(content))
    return buffer.getvalue()


def main(windows_program, linux_program, directory):
    epoch = int(os.environ["SOURCE_DATE_EPOCH"])
    hosts = {f"hosts/{path.name}": path.read_bytes() for path in (ROOT / "hosts").glob("*.json")}
    contents = {
        "windows": {"korvex.exe": pathlib.Path(windows_program).read_bytes(), "manual.html": page("manual.md")},
        "linux": {"korvex": pathlib.Path(linux_program).read_bytes(), "manual.html": page("manual.md"),
                  "simulated-host.html": page("simulated-host.md")} | hosts,
    }
    for system, pack, suffix in (("windows", zip_of, "zip"), ("linux", tar_of, "tar.gz")):
        name = f"korvex-{version()}-{system}-x64"
        packed = pack(name, with_checksums(contents[system] | notices(system)), epoch)
        path = pathlib.Path(directory, f"{name}.{suffix}")
        path.write_bytes(packed)
        print(f"{hashlib.sha256(packed).hexdigest()}  {path}")


if __name__ == "__main__":
    if len(sys.argv) != 4:
        sys.exit("usage: packages.py KORVEX_EXE KORVEX DIRECTORY")
    main(*sys.argv[1:])
