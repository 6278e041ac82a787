#!/usr/bin/env python3
"""Packs a bundle for people to unpack on a Mac.

usage: make-archive.py BUNDLE ARCHIVE.zip

The same bundle gives the same bytes: files are in the order of their names, as old as
SOURCE_DATE_EPOCH says, and have no owner and no permissions but those of programs and files.
"""

from __future__ import annotations

import os
import pathlib
import stat
import sys
import time
import zipfile


def main() -> None:
    if len(sys.argv) != 3:
        sys.exit(__doc__.split("\n\n")[1])
    bundle, archive = map(pathlib.Path, sys.argv[1:])
    # A zip archive cannot hold earlier times.
    epoch = max(int(os.environ.get("SOURCE_DATE_EPOCH", 0)), 315532800)
    with zipfile.ZipFile(archive, "w", zipfile.ZIP_DEFLATED, compresslevel=9) as packed:
        for path in [bundle, *sorted(bundle.rglob("*"))]:
            name = str(path.relative_to(bundle.parent)) + ("/" if path.is_dir() else "")
            entry = zipfile.ZipInfo(name, time.gmtime(epoch)[:6])
            entry.create_system = 3  # UNIX, also where it is made elsewhere
            is_program = path.is_dir() or os.access(path, os.X_OK)
            kind = stat.S_IFDIR if path.is_dir() else stat.S_IFREG
            entry.external_attr = (kind | (0o755 if is_program else 0o644)) << 16
            if path.is_dir():
                packed.writestr(entry, b"")
            else:
                entry.compress_type = zipfile.ZIP_DEFLATED
                packed.writestr(entry, path.read_bytes())


if __name__ == "__main__":
    main()
