"""Zephlin.app is what a Mac expects of a bundle that was built on Linux."""

from __future__ import annotations

import plistlib
import re
import stat
import unittest

import mach_o
from apple_api import BUILD, PROJECT

BUNDLE = BUILD / "bin/Zephlin.app"
PROGRAM = BUNDLE / "Contents/MacOS/Zephlin"
FRAMEWORKS = {"AppKit": "C", "CoreFoundation": "A", "CoreGraphics": "A", "Foundation": "C",
              "IOKit": "A", "QuartzCore": "A", "ServiceManagement": "A"}
LIBRARIES = {f"/System/Library/Frameworks/{name}.framework/Versions/{version}/{name}"
             for name, version in FRAMEWORKS.items()} | {
    "/usr/lib/libSystem.B.dylib", "/usr/lib/libc++.1.dylib", "/usr/lib/libobjc.A.dylib"}


class BundleTest(unittest.TestCase):
    def commands(self, architecture: str, kind: str) -> list[dict[str, str]]:
        return [each for each in mach_o.load_commands(PROGRAM, architecture)
                if each["cmd"] == kind]

    def test_it_holds_the_program_its_icon_and_its_properties_alone(self) -> None:
        files = {str(path.relative_to(BUNDLE)): stat.S_IMODE(path.stat().st_mode) & 0o111
                 for path in BUNDLE.rglob("*") if not path.is_dir()}
        self.assertEqual(files, {"Contents/Info.plist": 0, "Contents/MacOS/Zephlin": 0o111,
                                 "Contents/Resources/Zephlin.icns": 0})

    def test_it_runs_on_both_kinds_of_mac(self) -> None:
        self.assertEqual(mach_o.architectures(PROGRAM), ["arm64", "x86_64"])

    def test_it_runs_on_macos_13_and_behaves_as_built_with_the_sdk_of_14(self) -> None:
        for architecture in mach_o.architectures(PROGRAM):
            version, = self.commands(architecture, "LC_BUILD_VERSION")
            self.assertEqual((version["platform"], version["minos"], version["sdk"]),
                             ("macos", "13.0", "14.0"))

    def test_it_links_the_systems_libraries_alone_and_searches_no_path(self) -> None:
        for architecture in mach_o.architectures(PROGRAM):
            libraries = [each["name"] for each in self.commands(architecture, "LC_LOAD_DYLIB")]
            self.assertEqual(sorted(libraries), sorted(LIBRARIES))
            others = {each["cmd"] for each in mach_o.load_commands(PROGRAM, architecture)
                      if re.search(r"RPATH|DYLIB", each["cmd"])}
            self.assertEqual(others, {"LC_LOAD_DYLIB"})

    def test_every_symbol_comes_from_a_library_that_is_linked(self) -> None:
        for architecture in mach_o.architectures(PROGRAM):
            undefined = mach_o.undefined_symbols(PROGRAM, architecture)
            bound = mach_o.imports(PROGRAM, architecture)
            self.assertGreater(len(undefined), 200)
            self.assertEqual(undefined - {each.symbol for each in bound}, set())
            known = {library.split("/")[-1].split(".")[0] for library in LIBRARIES}
            self.assertEqual({each.library for each in bound} - known, set())

    def test_both_halves_are_signed_page_by_page(self) -> None:
        for architecture in mach_o.architectures(PROGRAM):
            signature = mach_o.signature(PROGRAM, architecture)
            self.assertTrue(signature.is_ad_hoc)
            self.assertEqual(signature.identifier, "Zephlin")
            self.assertGreater(signature.pages, 20)
            self.assertEqual(signature.wrong_pages, [])

    def test_its_properties_are_the_applications(self) -> None:
        properties = plistlib.loads((BUNDLE / "Contents/Info.plist").read_bytes())
        project = (PROJECT / "CMakeLists.txt").read_text()
        version = re.search(r"project\(Zephlin VERSION (\S+)", project)[1]
        expected = {
            "CFBundleExecutable": PROGRAM.name,
            "CFBundleIconFile": "Zephlin.icns",
            "CFBundleIdentifier": "com.quorvenel.zephlin",
            "CFBundleName": "Zephlin",
            "CFBundlePackageType": "APPL",
            "CFBundleShortVersionString": version,
            "CFBundleVersion": version,
            "LSMinimumSystemVersion": "13.0",
            "LSUIElement": True,
        }
        self.assertEqual({key: properties.get(key) for key in expected}, expected)

    def test_nothing_in_it_names_a_folder_of_the_machine_that_built_it(self) -> None:
        for path in BUNDLE.rglob("*"):
            if path.is_file():
                self.assertNotIn(str(PROJECT).encode(), path.read_bytes(), path)


if __name__ == "__main__":
    unittest.main(verbosity=2)
