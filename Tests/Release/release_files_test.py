"""Checks the files of a release: release_files_test.py RELEASE_FILES"""

import hashlib
import json
import re
import subprocess
import sys
import tarfile
import tempfile
import unittest
from pathlib import Path

import yaml

ROOT = Path(__file__).resolve().parents[2]
VERSION = re.search(r"^project\(Zephlin VERSION ([\d.]+)", (ROOT / "CMakeLists.txt").read_text(),
                    re.M)[1]
FILES = Path(sys.argv.pop())
NAMES = {
    f"zephlin_{VERSION}_amd64.deb", f"zephlin-desktop_{VERSION}_amd64.deb",
    f"zephlin-{VERSION}-1.x86_64.rpm", f"zephlin-desktop-{VERSION}-1.x86_64.rpm",
    f"zephlin-{VERSION}-1.src.rpm", "PKGBUILD", "SRCINFO", "zephlin.install",
    f"zephlin-{VERSION}.tar.gz", f"Zephlin-{VERSION}-macos.zip", "zephlin.rb",
    f"zephlin-{VERSION}.cdx.json", "release-notes.md", "SHA256SUMS",
}


def sha256(path: Path) -> str:
    return hashlib.sha256(path.read_bytes()).hexdigest()


def everything_in(components: list) -> list:
    return [each for component in components
            for each in [component, *everything_in(component.get("components", []))]]


class ReleaseFiles(unittest.TestCase):
    maxDiff = None

    def test_all_are_there(self):
        self.assertEqual({path.name for path in FILES.iterdir()}, NAMES)

    def test_the_workflow_publishes_them(self):
        workflow = yaml.safe_load((ROOT / ".github/workflows/release.yml").read_text())
        self.assertEqual(
            set(workflow["env"]["RELEASE_FILES"].replace("VERSION", VERSION).split()), NAMES)

    def test_checksums_are_those_of_the_files(self):
        sums = dict(reversed(line.split("  ")) for line in
                    (FILES / "SHA256SUMS").read_text().splitlines())
        self.assertEqual(sums, {name: sha256(FILES / name) for name in NAMES - {"SHA256SUMS"}})

    def test_the_tarball_has_what_git_tracks(self):
        tracked = subprocess.run(["git", "ls-tree", "-r", "--name-only", "HEAD"], cwd=ROOT,
                                 check=True, capture_output=True, text=True).stdout.split("\n")
        with tarfile.open(FILES / f"zephlin-{VERSION}.tar.gz") as tarball:
            members = {each.name for each in tarball.getmembers() if not each.isdir()}
        self.assertEqual(members, {f"zephlin-{VERSION}/{name}" for name in tracked if name})

    def test_no_program_has_a_path_of_the_builder(self):
        with tempfile.TemporaryDirectory() as folder:
            for name in NAMES:
                if name.endswith(".deb"):
                    subprocess.run(["dpkg-deb", "--extract", FILES / name, folder], check=True)
                elif name.endswith((".zip", "64.rpm")):
                    subprocess.run(["bsdtar", "--extract", "--file", FILES / name,
                                    "--directory", folder], check=True)
                for path in Path(folder).rglob("*"):
                    if path.is_file():
                        with self.subTest(archive=name, file=str(path)):
                            self.assertNotIn(f"/zephlin-{VERSION}/".encode(),
                                             path.read_bytes())

    def test_notes_are_those_of_the_changelog(self):
        notes = (FILES / "release-notes.md").read_text()
        changelog = (ROOT / "CHANGELOG.md").read_text()
        sections = re.split(r"^## \[?(\S+?)\]?(?: - .*)?$", changelog, flags=re.M)
        by_title = dict(zip(sections[1::2], sections[2::2]))
        section = by_title.get(VERSION) or by_title["Unreleased"]
        items = [" ".join(item.split()) for item in re.split(r"^- |^#.*$", section, flags=re.M)]
        self.assertTrue(items)
        for item in items:
            with self.subTest(item=item):
                self.assertIn(item, notes)
        for other in by_title.values():
            if other != section:
                self.assertNotIn(" ".join(other.split())[:60], " ".join(notes.split()))
        for name in re.findall(r"`(\S+?\.(?:deb|rpm|zip|rb|gz|json))`", notes):
            with self.subTest(name=name):
                self.assertIn(name, NAMES)


class BillOfMaterials(unittest.TestCase):
    maxDiff = None

    @classmethod
    def setUpClass(cls):
        cls.bill = json.loads((FILES / f"zephlin-{VERSION}.cdx.json").read_text())
        cls.files = {each["name"]: each for each in cls.bill["components"]
                     if each["type"] == "file"}
        cls.dependencies = {each["ref"]: set(each.get("dependsOn", []))
                            for each in cls.bill["dependencies"]}

    def programs(self, archive: str) -> dict:
        return {Path(each["name"]).name: each for each in self.files[archive]["components"]}

    def test_files_are_those_of_the_release(self):
        self.assertEqual(set(self.files), {name for name in NAMES if name not in
                         {f"zephlin-{VERSION}.cdx.json", "release-notes.md", "SHA256SUMS"}})
        for name, component in self.files.items():
            with self.subTest(file=name):
                self.assertEqual(component["hashes"],
                                 [{"alg": "SHA-256", "content": sha256(FILES / name)}])

    def test_programs_are_those_of_the_packages(self):
        programs = {"Zephlin", "hidutil", "zephlin-hidd"}
        for archive, expected in [
                (f"zephlin_{VERSION}_amd64.deb", programs),
                (f"zephlin-{VERSION}-1.x86_64.rpm", programs),
                (f"Zephlin-{VERSION}-macos.zip", {"Zephlin"})]:
            with self.subTest(archive=archive):
                self.assertEqual(set(self.programs(archive)), expected)
        for archive in [f"zephlin-desktop_{VERSION}_amd64.deb",
                        f"zephlin-desktop-{VERSION}-1.x86_64.rpm"]:
            with self.subTest(archive=archive):
                self.assertIn("libzephlin-desktop.so", self.programs(archive))

    def test_each_library_has_its_origin_and_its_licence(self):
        for each in everything_in(self.bill["components"]):
            if each["type"] == "library" and each.get("description") != "part of macOS":
                with self.subTest(library=each["bom-ref"]):
                    self.assertTrue(each["version"])
                    self.assertRegex(each["purl"], r"^pkg:(deb/debian|npm)/.+@.+")
                    self.assertTrue(each["licenses"])

    def test_what_is_in_a_program_is_listed(self):
        programs = self.programs(f"zephlin_{VERSION}_amd64.deb")
        linkages = {
            program: {each["name"]: each["properties"] for each in component["components"]}
            for program, component in programs.items()
        }
        self.assertIn("nlohmann-json3-dev", linkages["hidutil"])
        self.assertNotIn("nlohmann-json3-dev", linkages["Zephlin"])
        static = {"name": "zephlin:linkage", "value": "linked statically, included headers"}
        standard_library = next(name for name in linkages["Zephlin"]
                                if re.fullmatch(r"libstdc\+\+-\d+-dev", name))
        self.assertIn(static, linkages["Zephlin"][standard_library])
        self.assertNotIn(static, linkages["hidutil"][standard_library])

    def test_what_a_program_loads_is_what_its_package_depends_on(self):
        for package in ["zephlin", "zephlin-desktop"]:
            archive = f"{package}_{VERSION}_amd64.deb"
            depends = subprocess.run(["dpkg-deb", "--field", FILES / archive, "Depends"], check=True,
                                     capture_output=True, text=True).stdout
            required = {each.split()[0] for each in depends.split(", ")}
            loaded = set().union(*(self.dependencies[each["bom-ref"]]
                                   for each in self.programs(archive).values()))
            with self.subTest(package=package):
                # dpkg-shlibdeps knows nothing of plugins, and names no package that another needs.
                self.assertLessEqual({name for name in required if name.startswith("lib")}
                                     - {"libqt6svg6"}, loaded | {"libgcc-s1"})
                self.assertTrue(loaded)


if __name__ == "__main__":
    unittest.main()
