#!/usr/bin/env python3
"""Links a universal program.

usage: link_universal.py COMPILER OPTION... -arch A -arch B … -o PROGRAM …

The compiler could do it at one go, but would hand the linker temporary names, and the linker signs a
program with its name as the identifier. So each architecture is linked by itself, under the name
that the program will have.
"""

from __future__ import annotations

import pathlib
import subprocess
import sys
import tempfile

LIPO = "/usr/lib/llvm-16/bin/llvm-lipo"


def main() -> None:
    command, architectures, program = [], [], pathlib.Path()
    words = iter(sys.argv[1:])
    for word in words:
        if word == "-arch":
            architectures.append(next(words))
        elif word == "-o":
            program = pathlib.Path(next(words))
        else:
            command.append(word)
    with tempfile.TemporaryDirectory() as folder:
        halves = []
        for architecture in architectures:
            half = pathlib.Path(folder, architecture, program.name)
            half.parent.mkdir()
            linking = subprocess.run([*command, "-arch", architecture, "-o", half], check=False)
            if linking.returncode != 0:
                sys.exit(linking.returncode)
            halves.append(half)
        subprocess.run([LIPO, "-create", *halves, "-output", program], check=True)


if __name__ == "__main__":
    main()
