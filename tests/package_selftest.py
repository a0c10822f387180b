#!/usr/bin/env python3
"""Holds the making of packages to its word: the same files give the same bytes, each with its checksum and its rights."""

import hashlib
import io
import pathlib
import sys
import tarfile
import unittest
import zipfile

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "script"))
import packages

FILES = {"korvex.exe": b"program", "notices/b.txt": b"b", "LICENSE.txt": b"terms"}
EPOCH = 1_700_000_001  # 2023-11-14 22:13:21


class Packages(unittest.TestCase):
    def test_order_does_not_count(self):
        turned = dict(reversed(FILES.items()))
        for pack in (packages.zip_of, packages.tar_of):
            self.assertEqual(pack("top", packages.with_checksums(FILES), EPOCH),
                             pack("top", packages.with_checksums(turned), EPOCH))
            self.assertNotEqual(pack("top", FILES, EPOCH), pack("top", FILES | {"LICENSE.txt": b"other"}, EPOCH))

    def test_every_file_is_there_with_its_checksum(self):
        packed = zipfile.ZipFile(io.BytesIO(packages.zip_of("top", packages.with_checksums(FILES), EPOCH)))
        self.assertEqual(packed.read("top/SHA256SUMS").decode().splitlines(),
                         [f"{hashlib.sha256(FILES[name]).hexdigest()}  {name}" for name in sorted(FILES)])
        self.assertEqual({entry.filename: entry.external_attr >> 16 & 0o777 for entry in packed.infolist()},
                         {"top/korvex.exe": 0o755, "top/LICENSE.txt": 0o644, "top/SHA256SUMS": 0o644,
                          "top/notices/b.txt": 0o644})
        packed = tarfile.open(fileobj=io.BytesIO(packages.tar_of("top", FILES | {"korvex": b"p"}, EPOCH)))
        self.assertEqual([(entry.name, entry.mode, entry.mtime, entry.uid) for entry in packed.getmembers()][-2:],
                         [("top/korvex.exe", 0o755, EPOCH, 0), ("top/notices/b.txt", 0o644, EPOCH, 0)])

    def test_the_notices_of_what_is_linked_in(self):
        # Only the Linux program reads descriptions in JSON.
        self.assertIn("MIT", packages.notices("linux")["notices/nlohmann-json.txt"].decode())
        self.assertRegex(packages.version(), r"^\d+\.\d+\.\d+$")


if __name__ == "__main__":
    unittest.main()
