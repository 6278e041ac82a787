"""The metadata for software centres is complete, and its releases are those of CHANGELOG.md."""

import re
import shutil
import struct
import subprocess
import tempfile
import unittest
from pathlib import Path
from xml.etree import ElementTree

ROOT = Path(__file__).resolve().parents[2]
NAME = "com.quorvenel.zephlin"
CHANGELOG = ROOT / "CHANGELOG.md"
SITE = "https://quorvenel.example/zephlin"

SAMPLE = """# Changelog

All changes.

## Unreleased

Not this.

## [0.10.0] - 2030-02-01

Faster than `before`, <always> & everywhere;
in two lines.

Not this.

### Added

- Not this.

## 0.9.1 - 2030-01-31

### Fixed

- Not this.
"""


class Metainfo(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)
        self.metainfo = self.folder / f"root/usr/share/metainfo/{NAME}.metainfo.xml"
        self.metainfo.parent.mkdir(parents=True)

    def make(self, changelog: Path) -> ElementTree.Element:
        subprocess.run([ROOT / "Packaging/Desktop/make-metainfo.sh", changelog,
                        ROOT / f"Packaging/Desktop/{NAME}.metainfo.xml.in", self.metainfo], check=True)
        return ElementTree.parse(self.metainfo).getroot()

    def make_sample(self, text: str = SAMPLE) -> ElementTree.Element:
        changelog = self.folder / "CHANGELOG.md"
        changelog.write_text(text)
        return self.make(changelog)

    def complaints(self) -> set[str]:
        result = subprocess.run(
            ["appstreamcli", "validate", "--no-net", "--pedantic", "--no-color", self.metainfo],
            capture_output=True, text=True, check=False)
        self.assertIn("Validation was successful", result.stdout)
        return set(re.findall(r"^[A-Z]: [\w.]+:\S+: (.*)$", result.stdout, re.M))

    def compose(self) -> subprocess.CompletedProcess:
        """Makes a software centre's catalogue of what is installed."""
        return subprocess.run(
            ["appstreamcli", "compose", "--no-net", "--origin=zephlin",
             "--print-report=full", f"--result-root={self.folder}/result", self.folder / "root"],
            capture_output=True, text=True, check=False)

    def test_a_release_is_a_section_with_a_date(self):
        releases = self.make_sample().findall("releases/release")
        self.assertEqual([each.attrib for each in releases],
                         [{"version": "0.10.0", "date": "2030-02-01"},
                          {"version": "0.9.1", "date": "2030-01-31"}])
        self.assertEqual([each.find("url").text for each in releases],
                         [f"{SITE}/releases/0.10.0/", f"{SITE}/releases/0.9.1/"])
        self.assertEqual([each.text for each in releases[0].iter("p")],
                         ["Faster than before, <always> & everywhere; in two lines."])
        self.assertIsNone(releases[1].find("description"))

    def test_without_a_release_there_is_none(self):
        self.assertIsNone(self.make_sample("# Changelog\n\n## Unreleased\n\nX\n").find("releases"))

    def test_the_releases_are_those_of_the_changelog(self):
        sections = re.findall(r"^## \[?(\d[\d.]*)\]? - (\d{4}-\d\d-\d\d)$", CHANGELOG.read_text(), re.M)
        self.assertEqual([(each.get("version"), each.get("date"))
                          for each in self.make(CHANGELOG).findall("releases/release")], sections)

    def test_appstream_does_not_complain(self):
        self.make_sample()
        # A newer version of AppStream knows it.
        self.assertLessEqual(self.complaints(), {"unknown-tag developer"})
        self.make(CHANGELOG)
        self.assertLessEqual(self.complaints(), {"unknown-tag developer", "releases-info-missing"})

    def test_screenshots_are_wide_enough_pictures_with_captions(self):
        screenshots = self.make(CHANGELOG).findall("screenshots/screenshot")
        self.assertEqual([each.get("type") for each in screenshots], ["default", None])
        for screenshot in screenshots:
            image = screenshot.find("image")
            with self.subTest(image=image.text):
                self.assertRegex(screenshot.find("caption").text, r"^[A-Z].{10,99}[^.]$")
                folder, _, name = image.text.rpartition("/")
                self.assertEqual(folder, f"{SITE}/screenshots")
                header = (ROOT / "docs/images" / name).read_bytes()[:24]
                self.assertEqual(header[:8], b"\x89PNG\r\n\x1a\n")
                width, height = struct.unpack(">II", header[16:])
                self.assertEqual((image.get("width"), image.get("height")), (str(width), str(height)))
                self.assertGreaterEqual(width, 624)
                self.assertEqual(width * 9, height * 16)

    def test_addresses_are_on_the_site(self):
        urls = {each.get("type"): each.text for each in self.make(CHANGELOG).findall("url")}
        self.assertEqual(urls["homepage"], SITE)
        self.assertLessEqual({"homepage", "bugtracker", "help", "vcs-browser"}, set(urls))
        for address in urls.values():
            self.assertTrue(f"{address}/".startswith(f"{SITE}/"), address)

    def test_a_catalogue_has_it_with_its_desktop_file_and_icon(self):
        self.make_sample()
        share = self.metainfo.parents[1]
        for source, folder in [(f"Desktop/{NAME}.desktop", "applications"),
                               (f"Icons/{NAME}.svg", "icons/hicolor/scalable/apps")]:
            with self.subTest(missing=source):
                result = self.compose()
                self.assertNotEqual(result.returncode, 0, result.stdout)
            (share / folder).mkdir(parents=True)
            shutil.copy(ROOT / "Packaging" / source, share / folder)
        result = self.compose()
        self.assertEqual(result.returncode, 0, result.stdout)
        # It is in colour.
        hints = re.findall(r"^  \w: \W*\d*m?([\w-]+)", result.stdout, re.M)
        self.assertLessEqual(set(hints), {"asv-unknown-tag"})


if __name__ == "__main__":
    unittest.main()
