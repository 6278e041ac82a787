"""Everything of Apple's that Zephlin.app uses exists on the oldest macOS that it runs on."""

from __future__ import annotations

import json
import pathlib
import unittest
from dataclasses import dataclass

from apple_api import PROJECT, examine_room

TABLE = pathlib.Path(__file__).with_name("availability.txt")
SOURCES = {"pascal", "apple"}


@dataclass
class Row:
    since: tuple[int, ...]
    source: str


def version(text: str) -> tuple[int, ...]:
    return tuple(int(number) for number in text.split("."))


def read_table() -> dict[str, Row]:
    rows = {}
    for line in TABLE.read_text().splitlines():
        if line and not line.startswith("#"):
            since, source, name = line.split(maxsplit=2)
            if name in rows:
                raise ValueError(f"{name} is there twice")
            rows[name] = Row(version(since), source)
    return rows


def oldest_macos() -> tuple[int, ...]:
    presets = json.loads((PROJECT / "CMakePresets.json").read_text())["configurePresets"]
    macos = next(preset for preset in presets if preset["name"] == "macos")
    return version(macos["cacheVariables"]["CMAKE_OSX_DEPLOYMENT_TARGET"])


class AvailabilityTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls) -> None:
        cls.table = read_table()
        cls.used = {name.spelling: files for name, files in examine_room().names.items()
                    if name.kind != "macro"}

    def test_each_name_that_is_used_is_in_the_table(self) -> None:
        for name, files in self.used.items():
            with self.subTest(name=name, files=sorted(files)):
                self.assertTrue(name in self.table,
                                f"look up since when it exists, and add it to {TABLE.name}")

    def test_each_name_in_the_table_exists_on_the_oldest_macos_and_has_a_source(self) -> None:
        oldest = oldest_macos()
        for name, row in self.table.items():
            with self.subTest(name=name):
                self.assertLessEqual(row.since, oldest)
                self.assertIn(row.source, SOURCES)
        print("names in the table:", len(self.table))

    def test_no_name_in_the_table_is_unused(self) -> None:
        self.assertEqual(self.table.keys() - self.used.keys(), set())


if __name__ == "__main__":
    unittest.main(verbosity=2)
