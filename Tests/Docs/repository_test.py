"""The files by which people develop Zephlin are valid, name what there is, and do what they say."""

import json
import os
import re
import subprocess
import tempfile
import unittest
from pathlib import Path

import yaml

ROOT = Path(__file__).resolve().parents[2]
FORMS = [ROOT / ".github/ISSUE_TEMPLATE" / name for name in ["bug.yml", "feature.yml"]]
HOOK = ROOT / ".githooks/pre-commit"


def parsed(path: Path):
    return yaml.safe_load(path.read_text())


class IssueForms(unittest.TestCase):
    def test_each_asks_with_a_label_and_an_identifier_of_its_own(self):
        for path in FORMS:
            with self.subTest(form=path.name):
                form = parsed(path)
                self.assertTrue(form["name"] and form["description"])
                fields = [each for each in form["body"] if each["type"] != "markdown"]
                self.assertLessEqual({each["type"] for each in fields}, {"input", "textarea"})
                self.assertTrue(all(each["attributes"]["label"] for each in fields))
                self.assertEqual(len({each["id"] for each in fields}), len(fields))

    def test_a_bug_report_has_what_is_needed_to_find_it(self):
        required = {
            each["id"] for each in parsed(FORMS[0])["body"]
            if each.get("validations", {}).get("required")
        }
        self.assertLessEqual({"status", "check", "desktop"}, required)

    def test_there_is_no_blank_issue(self):
        config = parsed(FORMS[0].parent / "config.yml")
        self.assertIs(config["blank_issues_enabled"], False)


class DevelopersFiles(unittest.TestCase):
    def test_code_owners_are_of_folders_that_exist(self):
        for line in (ROOT / ".github/CODEOWNERS").read_text().splitlines():
            pattern, *owners = line.split()
            with self.subTest(pattern=pattern):
                self.assertTrue(owners and all(each.startswith("@") for each in owners))
                self.assertTrue(pattern == "*" or (ROOT / pattern.strip("/")).is_dir())

    def test_the_development_container_is_made_of_files_and_functions_that_exist(self):
        folder = ROOT / ".devcontainer"
        build = json.loads((folder / "devcontainer.json").read_text())["build"]
        dockerfile = (folder / build["dockerfile"]).read_text()
        for name in re.findall(r"^COPY (\S+)", dockerfile, re.M):
            self.assertTrue((folder / build["context"] / name).is_file())
        packages = (ROOT / "Packaging/Scripts/packages.sh").read_text()
        functions = set(re.findall(r"\bneed_\w+", dockerfile))
        self.assertLessEqual({"need_test_packages", "need_packages"}, functions)
        for function in functions:
            self.assertIn(f"\n{function}() {{", packages)

    def test_the_language_server_reads_the_database_of_the_preset_for_development(self):
        folder = parsed(ROOT / ".clangd")["CompileFlags"]["CompilationDatabase"]
        presets = json.loads((ROOT / "CMakePresets.json").read_text())["configurePresets"]
        self.assertIn(folder, {f"build/{each['name']}" for each in presets})


class CommitHook(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.clone = Path(folder.name)
        self.environment = os.environ | {"GIT_CONFIG_GLOBAL": "/dev/null"}
        self.git("init", "--quiet")
        self.git("config", "core.hooksPath", str(HOOK.parent))
        self.git("config", "user.name", "Somebody")
        self.git("config", "user.email", "somebody@example.org")
        (self.clone / ".clang-format").write_text((ROOT / ".clang-format").read_text())

    def git(self, *arguments: str) -> subprocess.CompletedProcess:
        return subprocess.run(["git", *arguments], cwd=self.clone, env=self.environment,
                              capture_output=True, text=True, check=False)

    def commit(self, staged: str, on_disk: str) -> subprocess.CompletedProcess:
        source = self.clone / "a name.cpp"
        source.write_text(staged)
        self.git("add", "--all")
        source.write_text(on_disk)
        return self.git("commit", "--message", "x")

    def test_it_refuses_what_is_staged_without_format(self):
        result = self.commit("int  x ;\n", "int x;\n")
        self.assertEqual(result.returncode, 1)
        self.assertIn("a name.cpp is not formatted", result.stderr)

    def test_it_lets_formatted_sources_pass_and_reads_nothing_else(self):
        (self.clone / "text").write_text("int  x ;\n")
        result = self.commit("int x;\n", "int  x ;\n")
        self.assertEqual(result.returncode, 0, result.stderr)


if __name__ == "__main__":
    unittest.main()
