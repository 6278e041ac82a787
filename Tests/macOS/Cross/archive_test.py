"""The archive that people unpack on a Mac holds the bundle, and is the same whenever it is made."""

from __future__ import annotations

import os
import pathlib
import shutil
import stat
import subprocess
import tempfile
import unittest
import zipfile

from apple_api import BUILD, PROJECT

BUNDLE = BUILD / "bin/Zephlin.app"


def pack(bundle: pathlib.Path, archive: pathlib.Path, epoch: str) -> bytes:
    subprocess.run(["/usr/bin/python3", PROJECT / "Packaging/macOS/make-archive.py", bundle,
                    archive], check=True, env={**os.environ, "SOURCE_DATE_EPOCH": epoch})
    return archive.read_bytes()


class ArchiveTest(unittest.TestCase):
    def setUp(self) -> None:
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def test_it_is_the_same_from_a_copy_that_was_made_later_by_someone_else(self) -> None:
        first = pack(BUNDLE, self.folder / "first.zip", "1700000000")
        copy = self.folder / "elsewhere/Zephlin.app"
        shutil.copytree(BUNDLE, copy, copy_function=shutil.copy)
        for path in [copy, *copy.rglob("*")]:
            path.chmod(path.stat().st_mode & ~0o077)
        second = pack(copy, self.folder / "second.zip", "1700000000")
        self.assertEqual(first, second)
        self.assertNotEqual(first, pack(BUNDLE, self.folder / "third.zip", "1800000000"))

    def test_it_holds_the_bundle_with_plain_permissions_and_nothing_else(self) -> None:
        pack(BUNDLE, self.folder / "archive.zip", "1700000000")
        with zipfile.ZipFile(self.folder / "archive.zip") as archive:
            modes = {entry.filename: entry.external_attr >> 16 for entry in archive.infolist()}
            for name in archive.namelist():
                if not name.endswith("/"):
                    self.assertEqual(archive.read(name), (BUNDLE.parent / name).read_bytes())
        folder, file, program = stat.S_IFDIR | 0o755, stat.S_IFREG | 0o644, stat.S_IFREG | 0o755
        self.assertEqual(modes, {
            "Zephlin.app/": folder,
            "Zephlin.app/Contents/": folder,
            "Zephlin.app/Contents/Info.plist": file,
            "Zephlin.app/Contents/MacOS/": folder,
            "Zephlin.app/Contents/MacOS/Zephlin": program,
            "Zephlin.app/Contents/Resources/": folder,
            "Zephlin.app/Contents/Resources/Zephlin.icns": file,
        })


if __name__ == "__main__":
    unittest.main(verbosity=2)
