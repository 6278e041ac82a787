"""Writes the commands that README.md tells a user of Linux to type, in their order, into a folder:
commands_of_readme.py FOLDER. N.command is a command, and N.output what README shows of its output."""

import sys
from pathlib import Path

from documents import Command, Markdown

ROOT = Path(__file__).resolve().parents[2]

# These take minutes; the tests named run them.
IN_OTHER_TESTS = {
    "./run vm": "RunVmTest",
    "./run macos": "RunMacosTest",
}

# These need a Mac.
ON_A_MAC = {
    "/Applications/Zephlin.app/Contents/MacOS/Zephlin": "the program in the bundle",
    "brew install --cask ./zephlin.rb": "Homebrew installs casks on macOS only",
}


def all_commands() -> list[Command]:
    readme = Markdown(ROOT / "README.md", ROOT)
    blocks = sorted(readme.blocks() + readme.commands_in_text(), key=lambda block: block.line)
    return [command for block in blocks for command in block.commands]


def main() -> None:
    folder = Path(sys.argv[1])
    elsewhere = IN_OTHER_TESTS | ON_A_MAC
    commands = [each for each in all_commands() if each.text not in elsewhere]
    for number, command in enumerate(commands, start=10):
        (folder / f"{number}.command").write_text(command.text + "\n")
        if command.output is not None:
            (folder / f"{number}.output").write_text(command.output)


if __name__ == "__main__":
    main()
