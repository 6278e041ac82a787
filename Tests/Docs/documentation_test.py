"""Checks the documents: commands are run, links are followed, names are looked up in the code."""

import errno
import json
import os
import re
import subprocess
import unittest
from pathlib import Path

import commands_of_readme
import private_machine
from documents import Command, ManualPage, Markdown
from not_run import NOT_RUN

ROOT = Path(__file__).resolve().parents[2]
MARKDOWN = [
    Markdown(path, ROOT)
    for path in [ROOT / "README.md", ROOT / "CONTRIBUTING.md", ROOT / "SECURITY.md",
                 *sorted((ROOT / "docs").glob("*.md"))]
]
MANUAL_PAGES = [ManualPage(path, ROOT) for path in sorted((ROOT / "Packaging/Man").iterdir())]
SOURCES = {
    path: path.read_text()
    for room in ["Base", "Zephlin", "ZephlinCore", "Platform", "KeyboardService", "Tests"]
    for path in (ROOT / room).rglob("*")
    if path.suffix in [".h", ".cpp", ".mm", ".c"]
}


def document(name: str) -> Markdown:
    return next(each for each in MARKDOWN if each.name == name)


def read(name: str) -> str:
    return (ROOT / name).read_text()


def code_in(text: str) -> set[str]:
    return set(re.findall(r"`([^`]+)`", text))


def is_run(command: Command) -> bool:
    return not any(re.fullmatch(pattern, command.text) for pattern in NOT_RUN)


class Commands(unittest.TestCase):
    maxDiff = None

    def test_each_does_what_its_document_shows(self):
        run = set()
        # ReadmeTest types what README.md shows.
        for each in MARKDOWN[1:] + MANUAL_PAGES:
            for block in each.blocks():
                block.commands = [command for command in block.commands if is_run(command)]
                if not block.commands:
                    continue
                results = private_machine.run(block)
                for command, (status, output, errors) in zip(block.commands, results):
                    run.add(command.text)
                    with self.subTest(place=block.place, command=command.text):
                        self.assertEqual(status, 0, errors)
                        if command.output is not None:
                            self.assertEqual(output, command.output)
        self.assertLessEqual({"Zephlin apply", "Zephlin status", "Zephlin restore",
                              "hidutil list", "hidutil property --get CapsLockDelayOverride"}, run)

    def test_each_that_is_not_run_is_there(self):
        commands = [
            command.text for each in MARKDOWN[1:] + MANUAL_PAGES for block in each.blocks()
            for command in block.commands
        ]
        for pattern, reason in NOT_RUN.items():
            with self.subTest(pattern=pattern, reason=reason):
                self.assertTrue(any(re.fullmatch(pattern, command) for command in commands))

    def test_each_in_readme_is_run_except_on_a_mac(self):
        commands = {command.text for command in commands_of_readme.all_commands()}
        self.assertLessEqual(commands_of_readme.IN_OTHER_TESTS.keys(), commands)
        self.assertLessEqual(commands_of_readme.ON_A_MAC.keys(), commands)
        for command, test in commands_of_readme.IN_OTHER_TESTS.items():
            with self.subTest(command=command, test=test):
                self.assertTrue(any(
                    re.search(rf"NAME {test} COMMAND \S+/RunTest.sh {re.escape(command)}\)",
                              path.read_text())
                    for path in (ROOT / "Tests").rglob("CMakeLists.txt")))

    def test_none_is_in_a_fence_that_is_not_looked_at(self):
        for each in MARKDOWN:
            for language, lines in each.fences():
                with self.subTest(document=each.name, language=language):
                    self.assertIn(language, {"console", "text", "ini"})
                    if language != "console":
                        self.assertFalse([line for line in lines if line.startswith("$ ")])

    def test_packages_have_the_version_of_the_project(self):
        version = re.search(r"^project\(Zephlin VERSION ([\d.]+)", read("CMakeLists.txt"), re.M)[1]
        shown = re.findall(r"(?:zephlin(?:-desktop)?_|releases/|Zephlin-)(\d[\d.]+\d)",
                           read("README.md"))
        self.assertTrue(shown)
        self.assertEqual(set(shown), {version})


class Names(unittest.TestCase):
    def test_links_and_pictures_lead_somewhere(self):
        for each in MARKDOWN:
            for link in each.links():
                with self.subTest(document=each.name, link=link):
                    if re.match(r"https?:", link):
                        continue
                    path, _, anchor = link.partition("#")
                    target = (each.path.parent / path).resolve() if path else each.path
                    self.assertTrue(target.is_file())
                    if anchor:
                        self.assertIn(anchor, Markdown(target, ROOT).anchors())

    def test_pictures_are_shown(self):
        shown = {
            (each.path.parent / link).resolve() for each in MARKDOWN for link in each.links()
        }
        metainfo = read("Packaging/Desktop/com.quorvenel.zephlin.metainfo.xml.in")
        shown |= {ROOT / "docs/images" / name for name in re.findall(r"/screenshots/([\w.-]+)", metainfo)}
        self.assertLessEqual(set((ROOT / "docs/images").iterdir()), shown)

    def test_files_are_there(self):
        rooms = {path.name for path in ROOT.iterdir()} - {"build"}
        for each in MARKDOWN:
            for name in each.code():
                if name.partition("/")[0] in rooms and "/" in name and " " not in name:
                    with self.subTest(document=each.name, file=name):
                        self.assertTrue(list(ROOT.glob(name)))

    def test_functions_are_in_the_code(self):
        for function in re.findall(r"`([\w:]+)\(\)`", document("docs/architecture.md").prose()):
            with self.subTest(function=function):
                name = re.compile(rf"\b{function}\(")
                self.assertTrue(any(name.search(text) for text in SOURCES.values()))

    def test_names_are_in_the_files_that_are_named_with_them(self):
        for page in ["docs/architecture.md", "CONTRIBUTING.md"]:
            pairs = re.findall(r"((?:`[\w:]+(?:\(\))?`(?:, )?)+)\s+in\s+`([^`]+/[^`]+)`",
                               document(page).prose())
            self.assertTrue(pairs)
            for names, path in pairs:
                for name in code_in(names):
                    with self.subTest(page=page, name=name, path=path):
                        self.assertRegex(read(path), rf"\b{name.removesuffix('()')}\b")

    def test_tests_are_there(self):
        tests = "\n".join(path.read_text() for path in (ROOT / "Tests").rglob("*")
                          if path.suffix == ".cpp" or path.name == "CMakeLists.txt")
        commands = "\n".join(command.text for block in document("CONTRIBUTING.md").blocks()
                             for command in block.commands)
        names = re.findall(r"(?: -R |--gtest_filter='\*?)(\w+)", commands)
        self.assertTrue(names)
        for name in names:
            with self.subTest(name=name):
                self.assertTrue(name in tests)

    def test_messages_are_in_the_code(self):
        texts = [text for path, text in SOURCES.items() if ROOT / "Tests" not in path.parents]
        code = re.sub(r'\)?"\s*(R"\()?"?', "", "\n".join(texts)) + os.strerror(errno.ENOENT)
        headings = re.findall(r"^\*\*(\".*\")", document("docs/troubleshooting.md").prose(), re.M)
        self.assertTrue(headings)
        for message in re.findall(r'"([^"]+)"', "\n".join(headings)):
            # Numbers, paths and the parts around a colon are put together at run time.
            for part in re.split(r"/\S+|\d+|: ", message):
                with self.subTest(message=message, part=part):
                    self.assertTrue(part.strip() in code)

    def test_rooms_include_what_the_page_allows(self):
        rows = re.findall(r"^\| `([\w/]+)/` \|[^|]*\|([^|]*)\|$",
                          document("docs/architecture.md").prose(), re.M)
        allowed = {room: code_in(text) for room, text in rows if "anything" not in text}
        for path, text in SOURCES.items():
            name = path.relative_to(ROOT)
            if name.is_relative_to("Tests"):
                continue
            rooms = [each for each in allowed if name.is_relative_to(each)]
            with self.subTest(file=str(name)):
                self.assertTrue(rooms)
            room = max(rooms, key=len)
            for included in re.findall(r'^#\s*(?:include|import) "([^"]+)"', text, re.M):
                # moc makes that one from the file itself.
                if included == f"{path.stem}.moc" or Path(included).is_relative_to(room):
                    continue
                with self.subTest(file=str(name), included=included):
                    self.assertTrue(any(
                        included.startswith(each) if each.endswith("/") else
                        Path(included).match(each) and included.count("/") == each.count("/")
                        for each in allowed[room]))


class Lists(unittest.TestCase):
    def test_labels_are_those_of_the_test_command(self):
        labels = set(re.findall(r"^    (\w+)\) echo [\w ]+ ;;", read("test"), re.M))
        self.assertTrue(labels)
        self.assertEqual(code_in(document("CONTRIBUTING.md").paragraph("The labels are")), labels)

    def test_presets_are_those_of_the_build(self):
        presets = json.loads(read("CMakePresets.json"))["configurePresets"]
        names = {each["name"] for each in presets if not each.get("hidden")}
        named = code_in(document("CONTRIBUTING.md").paragraph("The presets are"))
        self.assertEqual({each for each in named if "/" not in each}, names)

    def test_options_are_those_of_the_programs(self):
        for program, page in [("hidutil", "hidutil.1"), ("zephlin-hidd", "zephlin-hidd.8")]:
            with self.subTest(program=program):
                text = subprocess.run([private_machine.BIN / program, "--help"],
                                      capture_output=True, text=True, check=True).stdout
                offered = set(re.findall(r"--([a-z-]+)", text))
                manual = next(each for each in MANUAL_PAGES if each.path.name == page)
                self.assertEqual(manual.options(), offered)


if __name__ == "__main__":
    unittest.main()
