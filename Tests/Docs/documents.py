"""Parses the documents: blocks of commands, links, names in the text."""

import re
from dataclasses import dataclass, field
from pathlib import Path


@dataclass
class Command:
    text: str
    output: str | None = None  # As shown in the document, or None if it shows no output.


@dataclass
class Block:
    """Commands that run one after the other in the same place."""

    place: str
    commands: list[Command] = field(default_factory=list)

    @property
    def line(self) -> int:
        return int(self.place.rpartition(":")[2])


class Document:
    def __init__(self, path: Path, root: Path):
        self.path = path
        self.name = str(path.relative_to(root))
        self.lines = path.read_text().splitlines()

    def place(self, index: int) -> str:
        return f"{self.name}:{index + 1}"


class ManualPage(Document):
    def blocks(self) -> list[Block]:
        """Consecutive literal lines that begin with a prompt: .Dl $ or .Dl #."""
        blocks: list[Block] = []
        is_continued = False
        for index, line in enumerate(self.lines):
            match = re.fullmatch(r"\.Dl [$#] (.*)", line)
            if match and not is_continued:
                blocks.append(Block(self.place(index)))
            if match:
                blocks[-1].commands.append(Command(match[1]))
            is_continued = match is not None
        return blocks

    def options(self) -> set[str]:
        return set(re.findall(r"Fl -([a-z-]+)", "\n".join(self.lines)))


class Markdown(Document):
    def blocks(self) -> list[Block]:
        return self._indented_blocks() + self._transcripts()

    def _indented_blocks(self) -> list[Block]:
        """Lines indented by four spaces after an empty line are commands."""
        blocks: list[Block] = []
        for index, line in self._indented_lines():
            if not blocks or index != last + 1:
                blocks.append(Block(self.place(index)))
            last = index
            commands = blocks[-1].commands
            text = re.sub(r"\s+# .*", "", line.strip())
            if commands and commands[-1].text.endswith("\\"):
                commands[-1].text = commands[-1].text[:-1] + text
            else:
                commands.append(Command(text))
        return blocks

    def _indented_lines(self):
        previous = ""
        for index, line in self._outside_fences():
            if line.startswith("    ") and not previous:
                yield index, line
            else:
                previous = line

    def _transcripts(self) -> list[Block]:
        """Fences with the language console hold commands after a prompt, and their output."""
        blocks: list[Block] = []
        for language, start, lines in self._fences():
            if language != "console":
                continue
            block = Block(self.place(start))
            for line in lines:
                if line.startswith("$ "):
                    block.commands.append(Command(line[2:], ""))
                else:
                    block.commands[-1].output += line + "\n"
            blocks.append(block)
        return blocks

    def commands_in_text(self) -> list[Block]:
        """The text between backticks that can be typed: it has arguments or names a file to run."""
        return [
            Block(self.place(index), [Command(code)])
            for index, line in self._lines_of_prose()
            for code in re.findall(r"`([^`]+)`", line) if " " in code or re.match(r"\.?/", code)
        ]

    def _fences(self):
        language, start, lines = None, 0, []
        for index, line in enumerate(self.lines):
            if not line.startswith("```"):
                lines.append(line)
            elif language is None:
                language, start, lines = line[3:], index, []
            else:
                yield language, start, lines
                language = None

    def _outside_fences(self):
        is_inside = False
        for index, line in enumerate(self.lines):
            if line.startswith("```"):
                is_inside = not is_inside
            elif not is_inside:
                yield index, line

    def _lines_of_prose(self):
        code = {index for index, _ in self._indented_lines()}
        for index, line in self._outside_fences():
            if index not in code:
                yield index, line

    def fences(self) -> list[tuple[str, list[str]]]:
        """The language and the lines of each fence."""
        return [(language, lines) for language, _, lines in self._fences()]

    def prose(self) -> str:
        return "\n".join(line for _, line in self._lines_of_prose())

    def links(self) -> list[str]:
        return re.findall(r"\]\(([^)\s]+)\)", self.prose())

    def code(self) -> list[str]:
        """The text between backticks."""
        return re.findall(r"`([^`]+)`", self.prose())

    def anchors(self) -> set[str]:
        titles = re.findall(r"^#+ (.*)", self.prose(), re.M)
        return {re.sub(r"[^\w -]", "", title.lower()).replace(" ", "-") for title in titles}

    def paragraph(self, beginning: str) -> str:
        """The paragraph that starts with these words."""
        paragraphs = re.split(r"\n{2,}", self.prose())
        return next(each for each in paragraphs if each.startswith(beginning))
