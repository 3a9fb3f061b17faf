#!/usr/bin/env python3
"""Fetching what a release is built with: by digest, whole or not at all. Archives come from files here.

    dependencies_test.py CHECKOUT
"""
import hashlib
import json
import subprocess
import sys
import tempfile
import unittest
import zipfile
from pathlib import Path

PACKAGING = Path(sys.argv[1]).resolve() / "packaging/windows"
SCRIPT = PACKAGING / "fetch_dependencies.cmake"


class Fetching(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)
        self.list = self.folder / "list.json"
        self.archive = self.folder / "archive.zip"
        self.write_archive({"thing-1.0/include/thing.h": "text"})

    def write_archive(self, files):
        with zipfile.ZipFile(self.archive, "w") as archive:
            for name, text in files.items():
                archive.writestr(name, text)
        self.digest = hashlib.sha256(self.archive.read_bytes()).hexdigest()

    def fetch(self, digest, *options, url=None):
        self.list.write_text(json.dumps({"thing": {"version": "1.0", "url": url or self.archive.as_uri(), "sha256": digest}}))
        return self.fetch_again(*options)

    def fetch_again(self, *options):
        return subprocess.run(["cmake", f"-DDEPENDENCIES={self.list}", f"-DOUTPUT={self.folder / 'out'}", *options, "-P", SCRIPT],
                              capture_output=True, text=True)

    def unpacked(self):
        out = self.folder / "out"
        return {path.relative_to(out).as_posix() for path in out.rglob("*") if path.is_file() and not path.name.startswith(".")}

    def test_archive_with_one_folder_is_that_folder(self):
        result = self.fetch(self.digest)
        self.assertEqual(result.returncode, 0, result.stderr)
        self.assertEqual(self.unpacked(), {"thing/include/thing.h"})

    def test_archive_with_several_folders_is_unpacked_as_it_is(self):
        self.write_archive({"bin/a.dll": "a", "include/a.h": "a"})
        self.assertEqual(self.fetch(self.digest).returncode, 0)
        self.assertEqual(self.unpacked(), {"thing/bin/a.dll", "thing/include/a.h"})

    def test_other_digest_unpacks_nothing(self):
        result = self.fetch("0" * 64)
        self.assertNotEqual(result.returncode, 0)
        self.assertIn("has the digest", result.stderr)
        self.assertEqual(self.unpacked(), set())

    def test_missing_digest_says_what_to_do(self):
        for digest in ("", "to be done"):
            with self.subTest(digest):
                result = self.fetch(digest)
                self.assertNotEqual(result.returncode, 0)
                self.assertIn("-DRECORD_HASHES=ON", result.stderr)
                self.assertEqual(self.unpacked(), set())

    def test_missing_archive(self):
        result = self.fetch(self.digest, url=(self.folder / "none.zip").as_uri())
        self.assertNotEqual(result.returncode, 0)
        self.assertIn("cannot be had", result.stderr)
        self.assertEqual(self.unpacked(), set())

    def test_digest_is_recorded_once_and_then_holds(self):
        self.assertEqual(self.fetch("", "-DRECORD_HASHES=ON").returncode, 0)
        recorded = json.loads(self.list.read_text())["thing"]
        self.assertEqual(recorded["sha256"], self.digest)
        self.write_archive({"thing-1.0/include/thing.h": "other"})
        self.assertEqual(self.fetch_again("-DRECORD_HASHES=ON").returncode, 0)
        self.assertEqual(json.loads(self.list.read_text())["thing"], recorded)
        self.assertNotEqual(self.fetch_again().returncode, 0)

    def test_new_version_replaces_the_old_one(self):
        self.assertEqual(self.fetch(self.digest).returncode, 0)
        self.write_archive({"thing-1.1/include/new.h": "text"})
        self.assertEqual(self.fetch(self.digest).returncode, 0)
        self.assertEqual(self.unpacked(), {"thing/include/new.h"})


class OwnList(unittest.TestCase):
    def test_every_archive_has_a_digest_and_a_protected_address(self):
        for name, entry in json.loads((PACKAGING / "dependencies.json").read_text()).items():
            with self.subTest(name):
                self.assertRegex(entry["sha256"], r"^[0-9a-f]{64}$")
                self.assertRegex(entry["url"], r"^https://.*\.zip$")


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1], verbosity=2)
