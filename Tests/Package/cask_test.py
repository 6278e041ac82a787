"""The Homebrew cask that a release has passes Homebrew's audit, and the rules find what is wrong.

usage: cask_test.py, with ZEPHLIN_VERSION in the environment
"""

import hashlib
import os
import subprocess
import tempfile
import unittest
import zipfile
from pathlib import Path

HERE = Path(__file__).parent
ROOT = HERE.parents[1]
VERSION = os.environ["ZEPHLIN_VERSION"]

# A mistake: a text in the cask, what replaces it, and the complaint.
MISTAKES = [
    ('cask "zephlin"', 'cask "Zephlin"', "the token should be the file's name"),
    (f'version "{VERSION}"', 'version "latest"', "the version should be digits"),
    ('sha256 "', 'sha256 "0', "the hash should be 64"),
    ('  name "Zephlin"\n', "", "name is missing"),
    ('  name "Zephlin"\n', '  names "Zephlin"\n', "names is not a stanza"),
    ('  app "Zephlin.app"\n', "", "app is missing"),
    ('  name "Zephlin"\n  desc', '  desc "X"\n  name "Zephlin"\n  desc', "the order should be"),
    ('"\n  name', '"\n\n  name', "name should directly follow url"),
    ('"\n\n  app', '"\n  app', "app should be a line away from depends_on"),
    ('desc "M', 'desc "m', "begin with a capital"),
    ('desc "Makes', 'desc "The tool that makes', "begin with an article"),
    ('desc "Makes', 'desc "Zephlin makes', "begin with the name"),
    ('instantly"', 'instantly on macOS"', "name the platform"),
    ('instantly"', 'instantly."', "end with a full stop"),
    ('instantly"', 'instantly, and checks that it does so"', "at most 80 characters"),
    ('homepage "https:', 'homepage "http:', "should be https"),
    ('"https://quorvenel.example/zephlin/releases/#{', '"https://example.org/#{', "needs verified"),
    ("releases/#{version}/Zephlin-#{version}", "Zephlin", "made of the version"),
    (">= :ventura", "13", "depends_on should say which macOS"),
    ("#{appdir}", "/Applications", "binary should be in appdir"),
    ("uninstall quit: ", "uninstall stop: ", "stop is not a directive of uninstall"),
    ("quit:       ", "signal:     \"KILL\",\n            quit:       ", "the order of uninstall"),
    ('trash: "~/', 'trash: "', "should be absolute or in the home folder"),
    ('trash: "~/Library/Preferences/com.quorvenel.zephlin.plist"', 'trash: ["~/b", "~/a"]',
     "the paths of zap should be sorted"),
]

# What only the layout shows, and rubocop's name of the rule.
UNTIDY = [
    ("quit:       ", "quit: ", "Layout/HashAlignment"),
    ("  app ", "   app ", "Layout/IndentationConsistency"),
    ("\n\n  app", "\n\n\n  app", "Layout/EmptyLines"),
    ('"Zephlin.app"\n', '"Zephlin.app" \n', "Layout/TrailingWhitespace"),
    ('name "Zephlin"', "name 'Zephlin'", "Style/StringLiterals"),
    ("macos: ", ":macos => ", "Style/HashSyntax"),
    ("tap of", "tap of " + 60 * "x", "Layout/LineLength"),
]


class Cask(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(folder.cleanup)
        cls.folder = Path(folder.name)
        cls.archive = cls.folder / f"Zephlin-{VERSION}-macos.zip"
        with zipfile.ZipFile(cls.archive, "w") as archive:
            archive.writestr("Zephlin.app/Contents/Info.plist", "")
        cls.cask = cls.folder / "zephlin.rb"
        cls.made = cls.make(cls.archive)
        cls.text = cls.cask.read_text()

    @classmethod
    def make(cls, archive: Path) -> subprocess.CompletedProcess:
        return subprocess.run([ROOT / "Packaging/macOS/make-cask.sh", archive, VERSION, cls.cask],
                              capture_output=True, text=True, check=False)

    def with_mistake(self, number: int, text: str, replacement: str) -> Path:
        """Writes the cask with a mistake."""
        self.assertIn(text, self.text)
        path = self.folder / str(number) / "zephlin.rb"
        path.parent.mkdir(exist_ok=True)
        path.write_text(self.text.replace(text, replacement, 1))
        return path

    def audit(self, *casks: Path) -> subprocess.CompletedProcess:
        return subprocess.run(["ruby", HERE / "cask_audit.rb", *casks],
                              capture_output=True, text=True, check=False)

    def style(self, *casks: Path) -> subprocess.CompletedProcess:
        return subprocess.run(["rubocop", "--config", HERE / "cask_style.yml", "--cache", "false",
                               "--format", "emacs", *casks],
                              capture_output=True, text=True, check=False)

    def test_it_installs_the_archive_that_it_was_made_for(self):
        self.assertEqual(self.made.returncode, 0, self.made.stderr)
        self.assertIn(f'version "{VERSION}"\n', self.text)
        self.assertIn(hashlib.sha256(self.archive.read_bytes()).hexdigest(), self.text)
        self.assertNotIn("@", self.text)

    def test_it_passes_the_audit(self):
        result = self.audit(self.cask)
        self.assertEqual((result.returncode, result.stdout, result.stderr), (0, "", ""))

    def test_the_audit_finds_every_mistake(self):
        paths = [self.with_mistake(number, text, replacement)
                 for number, (text, replacement, _) in enumerate(MISTAKES)]
        result = self.audit(*paths)
        self.assertEqual((result.returncode, result.stderr), (1, ""))
        for path, (_, replacement, complaint) in zip(paths, MISTAKES):
            with self.subTest(replacement=replacement):
                self.assertRegex(result.stdout, f"(?m)^{path}: .*{complaint}")

    def test_its_layout_is_homebrews(self):
        paths = [self.with_mistake(100 + number, text, replacement)
                 for number, (text, replacement, _) in enumerate(UNTIDY)]
        result = self.style(self.cask, *paths)
        self.assertNotIn(f"{self.cask}:", result.stdout)
        for path, (_, replacement, rule) in zip(paths, UNTIDY):
            with self.subTest(replacement=replacement):
                self.assertRegex(result.stdout, f"(?m)^{path}:.* {rule}: ")

    def test_an_archive_with_an_updater_needs_another_cask(self):
        archive = self.folder / "updater.zip"
        with zipfile.ZipFile(archive, "w") as packed:
            packed.writestr("Zephlin.app/Contents/Frameworks/Sparkle.framework/Sparkle", "")
        result = self.make(archive)
        self.assertEqual(result.returncode, 1)
        self.assertIn("auto_updates", result.stderr)


if __name__ == "__main__":
    unittest.main()
