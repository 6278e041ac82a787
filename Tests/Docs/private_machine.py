"""Runs commands with the built programs in /usr/bin and three virtual keyboards."""

import os
import re
import shutil
import subprocess
import tempfile
from pathlib import Path

from documents import Block

BIN = Path(os.environ["ZEPHLIN_BIN"])
TESTS = Path(os.environ["ZEPHLIN_TESTS"])

# What else the commands in the documents, and the script around them, need.
TOOLS = ["bash", "rm", "sleep"]


def run(block: Block) -> list[tuple[int, str, str]]:
    """The exit status, standard output and standard error of each command."""
    with tempfile.TemporaryDirectory() as folder:
        machine = Path(folder)
        _furnish(machine)
        (machine / "script").write_text(_script(block))
        environment = {"PATH": "/usr/bin", "HOME": folder, "LC_ALL": "C.UTF-8"}
        subprocess.run(
            [TESTS / "WithPrivateBin", machine / "bin", "/usr/bin/bash", machine / "script"],
            cwd=machine, env=environment, check=True, timeout=120)
        return [
            (int((machine / f"{number}.status").read_text()),
             (machine / f"{number}.output").read_text(),
             (machine / f"{number}.errors").read_text())
            for number in range(len(block.commands))
        ]


def _furnish(machine: Path) -> None:
    """Puts the programs, a user's files and the clone's build folder there."""
    programs = machine / "bin"
    programs.mkdir()
    for name in ["Zephlin", "hidutil", "zephlin-hidd"]:
        shutil.copy2(BIN / name, programs)
    for name in TOOLS:
        shutil.copy2(Path(shutil.which(name) or name).resolve(), programs / name)
    (machine / ".config/zephlin").mkdir(parents=True)
    preset = machine / "build/dev"
    preset.mkdir(parents=True)
    (preset / "bin").symlink_to(BIN)
    (preset / "tests").symlink_to(TESTS)


def _script(block: Block) -> str:
    lines = ["zephlin-hidd --virtual-keyboards 3 2>service.log &",
             _until_there("/run/zephlin/hidd.sock")]
    for number, command in enumerate(block.commands):
        lines.append(f"{{ {command.text}\n}} >{number}.output 2>{number}.errors")
        lines.append(f"echo $? >{number}.status")
        socket = re.search(r"--socket (\S+)", command.text)
        if socket and command.text.endswith("&"):
            lines.append(_until_there(socket[1]))
    lines += ["kill $(jobs -p)", "wait"]
    return "\n".join(lines) + "\n"


def _until_there(socket: str) -> str:
    return f"until [ -S {socket} ]; do sleep 0.05; done"
