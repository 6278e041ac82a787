"""What GitHub runs: with the least rights, from exact versions, and the scripts do what they say."""

import hashlib
import json
import os
import re
import subprocess
import tempfile
import unittest
import zipfile
from pathlib import Path

import yaml

ROOT = Path(__file__).resolve().parents[2]
# YAML reads the key "on" as true.
WORKFLOWS = {path.stem: yaml.safe_load(path.read_text())
             for path in sorted((ROOT / ".github/workflows").iterdir())}
JOBS = [(workflow, name, job) for workflow, content in WORKFLOWS.items()
        for name, job in content["jobs"].items()]
STEPS = [(f"{workflow}: {name}", step) for workflow, name, job in JOBS
         for step in job.get("steps", [])]
RELEASE = WORKFLOWS["release"]
VERSION = re.search(r"^project\(Zephlin VERSION ([\d.]+)", (ROOT / "CMakeLists.txt").read_text(),
                    re.M)[1]
FILES = RELEASE["env"]["RELEASE_FILES"].replace("VERSION", VERSION).split()
ARCHIVE = f"Zephlin-{VERSION}-macos.zip"


def run_step(job: str, name: str, folder: Path, **variables: str) -> subprocess.CompletedProcess:
    """Runs a step's script as GitHub does."""
    step = next(each for each in RELEASE["jobs"][job]["steps"] if each.get("name") == name)
    environment = os.environ | {"RELEASE_FILES": RELEASE["env"]["RELEASE_FILES"], "VERSION": VERSION} | variables
    return subprocess.run(["bash", "--noprofile", "--norc", "-eo", "pipefail", "-c", step["run"]],
                          cwd=folder, env=environment, capture_output=True, text=True, check=False)


class Workflows(unittest.TestCase):
    def test_branches_are_tested_and_tags_are_released(self):
        self.assertEqual(set(WORKFLOWS), {"linux", "macos", "release"})
        for name in ["linux", "macos"]:
            self.assertEqual(WORKFLOWS[name][True],
                             {"push": {"branches": ["**"]}, "pull_request": None,
                              "workflow_call": None})
        self.assertEqual(RELEASE[True], {"push": {"tags": ["v*"]}, "workflow_dispatch": None})

    def test_linux_runs_every_test_on_debian(self):
        job = WORKFLOWS["linux"]["jobs"]["test"]
        self.assertEqual(job["container"]["image"], "debian:bookworm")
        self.assertIn("./test", [step.get("run") for step in job["steps"]])

    def test_each_job_has_the_least_rights_and_a_time_limit(self):
        rights = {"attest": {"id-token": "write", "attestations": "write"},
                  "publish": {"contents": "write"}}
        for workflow, name, job in JOBS:
            with self.subTest(workflow=workflow, job=name):
                if workflow == "release":
                    self.assertEqual(job["permissions"], rights.get(name, {"contents": "read"}))
                self.assertTrue("uses" in job or job["timeout-minutes"] > 0)
        self.assertEqual([content["permissions"] for content in WORKFLOWS.values()],
                         [{"contents": "read"}, {"contents": "read"}, {}])

    def test_each_step_runs_a_script_or_an_exact_version_of_an_action(self):
        for job, step in STEPS:
            with self.subTest(job=job, step=step):
                self.assertNotEqual("run" in step, "uses" in step)
                self.assertRegex(step.get("uses", "actions/x@v1.2.3"),
                                 r"^actions/[\w-]+@v\d+\.\d+\.\d+$")
                if "checkout" in step.get("uses", ""):
                    self.assertIs(step["with"]["persist-credentials"], False)

    def test_no_value_is_pasted_into_a_script(self):
        for job, step in STEPS:
            with self.subTest(job=job, step=step):
                self.assertNotIn("${{", step.get("run", ""))

    def test_secrets_are_of_the_environment_for_releases(self):
        for workflow, name, job in JOBS:
            with self.subTest(workflow=workflow, job=name):
                self.assertEqual("secrets." in json.dumps(job), job.get("environment") == "release")

    def test_shellcheck_finds_nothing_in_the_scripts(self):
        for workflow, name, job in JOBS:
            is_bash = "defaults" in WORKFLOWS[workflow] or "container" not in job
            for step in filter(lambda each: "run" in each, job.get("steps", [])):
                with self.subTest(workflow=workflow, job=name, step=step["name"]):
                    result = subprocess.run(
                        ["shellcheck", "--shell", "bash" if is_bash else "sh", "-"],
                        input="set -e\n" + step["run"], capture_output=True, text=True, check=False)
                    self.assertEqual(result.stdout, "")

    def test_what_a_job_downloads_was_made_by_one_that_it_needs(self):
        def artifacts(job: dict, action: str) -> set[str]:
            return {step["with"]["name"] for step in job.get("steps", [])
                    if step.get("uses", "").startswith(f"actions/{action}-artifact@")}

        def needed(name: str) -> set[str]:
            needs = RELEASE["jobs"][name].get("needs", [])
            direct = {needs} if isinstance(needs, str) else set(needs)
            return direct.union(*map(needed, direct))

        for name, job in RELEASE["jobs"].items():
            made = set()
            for other in needed(name):
                content = RELEASE["jobs"][other]
                if "uses" in content:
                    content = WORKFLOWS[Path(content["uses"]).stem]["jobs"].values()
                else:
                    content = [content]
                made.update(*(artifacts(each, "upload") for each in content))
            with self.subTest(job=name):
                self.assertLessEqual(artifacts(job, "download"), made)

    def test_a_dry_run_publishes_nothing(self):
        for name, job in RELEASE["jobs"].items():
            with self.subTest(job=name):
                self.assertEqual("write" in job["permissions"].values() or "APT_KEY" in str(job),
                                 job.get("if") == "github.event_name == 'push'")


class WithFolder(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)


class Tag(WithFolder):
    def setUp(self):
        super().setUp()
        self.git("init", "--quiet", "--initial-branch", "main")
        (self.folder / "CMakeLists.txt").write_text((ROOT / "CMakeLists.txt").read_text())
        self.git("add", "--all")
        self.commit = self.make_commit()
        self.git("update-ref", "refs/remotes/origin/main", "HEAD")

    def git(self, *arguments: str) -> str:
        return subprocess.run(
            ["git", "-c", "user.name=Somebody", "-c", "user.email=somebody@example.org", *arguments],
            cwd=self.folder, env=os.environ | {"GIT_CONFIG_GLOBAL": "/dev/null"},
            capture_output=True, text=True, check=True).stdout.strip()

    def make_commit(self) -> str:
        self.git("commit", "--quiet", "--allow-empty", "--message", "x")
        return self.git("rev-parse", "HEAD")

    def check(self, kind: str, name: str) -> subprocess.CompletedProcess:
        self.output = self.folder / "output"
        return run_step("version", "Check that the tag is the project's version, on main",
                        self.folder, GITHUB_REF_TYPE=kind, GITHUB_REF_NAME=name,
                        GITHUB_SHA=self.commit, GITHUB_OUTPUT=str(self.output))

    def test_the_projects_version_on_main_is_released(self):
        self.git("commit", "--quiet", "--allow-empty", "--message", "later")
        self.git("update-ref", "refs/remotes/origin/main", "HEAD")
        result = self.check("tag", f"v{VERSION}")
        self.assertEqual(result.returncode, 0, result.stderr)
        self.assertEqual(self.output.read_text(), f"version={VERSION}\n")

    def test_another_version_is_refused(self):
        result = self.check("tag", f"v{VERSION}.1")
        self.assertEqual(result.returncode, 1)
        self.assertIn(f"the project's version is {VERSION}", result.stderr)

    def test_a_commit_that_is_not_on_main_is_refused(self):
        self.commit = self.make_commit()
        result = self.check("tag", f"v{VERSION}")
        self.assertEqual(result.returncode, 1)
        self.assertIn("not on main", result.stderr)

    def test_a_dry_run_needs_no_tag(self):
        self.commit = self.make_commit()
        self.assertEqual(self.check("branch", "a-branch").returncode, 0)
        self.assertEqual(self.output.read_text(), f"version={VERSION}\n")


class Release(WithFolder):
    def setUp(self):
        super().setUp()
        self.release = self.folder / "release"
        self.release.mkdir()
        for name in FILES:
            (self.release / name).write_text(name)
        self.write_checksums()

    def hash_of(self, name: str) -> str:
        return hashlib.sha256((self.release / name).read_bytes()).hexdigest()

    def write_checksums(self):
        (self.release / "SHA256SUMS").write_text("".join(
            f"{self.hash_of(name)}  {name}\n" for name in FILES if name != "SHA256SUMS"))

    def check(self) -> int:
        return run_step("release", "Check that all files are there, and nothing else",
                        self.folder).returncode

    def test_it_has_its_files_and_nothing_else(self):
        self.assertEqual(self.check(), 0)
        (self.release / "another").write_text("")
        self.assertNotEqual(self.check(), 0)
        (self.release / "another").rename(self.release / "zephlin.rb")
        self.assertNotEqual(self.check(), 0)
        self.write_checksums()
        self.assertEqual(self.check(), 0)
        (self.release / "PKGBUILD").unlink()
        self.assertNotEqual(self.check(), 0)

    def test_every_file_has_a_checksum(self):
        checksums = self.release / "SHA256SUMS"
        checksums.write_text("".join(checksums.read_text().splitlines(True)[1:]))
        self.assertNotEqual(self.check(), 0)

    def test_a_signed_archive_replaces_the_one_built_on_linux(self):
        (self.release / f"zephlin-{VERSION}.cdx.json").write_text(json.dumps({
            "components": [
                {"name": name, "hashes": [{"alg": "SHA-256", "content": self.hash_of(name)}],
                 "components": [{"name": "a program"}]} for name in FILES],
            "dependencies": [{"ref": ARCHIVE}, {"ref": f"{ARCHIVE}#Zephlin"}]}))
        signed = self.folder / "signed" / ARCHIVE
        signed.parent.mkdir()
        with zipfile.ZipFile(signed, "w") as archive:
            archive.writestr("Zephlin.app/Contents/CodeResources", "")
        (self.folder / "Packaging").symlink_to(ROOT / "Packaging")
        result = run_step("release", "Put the signed archive into the release", self.folder)
        self.assertEqual(result.returncode, 0, result.stderr)

        self.assertEqual((self.release / ARCHIVE).read_bytes(), signed.read_bytes())
        self.assertIn(self.hash_of(ARCHIVE), (self.release / "zephlin.rb").read_text())
        bill = json.loads((self.release / f"zephlin-{VERSION}.cdx.json").read_text())
        components = {each["name"]: each for each in bill["components"]}
        for name in [ARCHIVE, "zephlin.rb"]:
            self.assertNotIn("hashes", components[name])
        self.assertNotIn("components", components[ARCHIVE])
        self.assertLessEqual({"hashes", "components"}, set(components["PKGBUILD"]))
        self.assertEqual(bill["dependencies"], [{"ref": ARCHIVE}])
        self.assertEqual(self.check(), 0)

    def publish(self, is_signed: str) -> tuple[list[str], str]:
        """Returns the arguments of gh, and the notes that it would publish."""
        programs = self.folder / "programs"
        programs.mkdir(exist_ok=True)
        (programs / "gh").write_text(
            f"#!/bin/sh\nprintf '%s\\n' \"$@\" >{self.folder}/arguments\n")
        (programs / "gh").chmod(0o755)
        result = run_step("publish", "Make a draft of the release", self.release,
                          IS_SIGNED=is_signed, PATH=f"{programs}:{os.environ['PATH']}")
        self.assertEqual(result.returncode, 0, result.stderr)
        return ((self.folder / "arguments").read_text().splitlines(),
                (self.folder / "notes.md").read_text())

    def test_all_files_are_attached_to_a_draft(self):
        arguments, notes = self.publish("false")
        self.assertEqual(arguments[:3], ["release", "create", f"v{VERSION}"])
        self.assertLessEqual({"--draft", "--verify-tag"}, set(arguments))
        self.assertEqual(arguments[arguments.index("--") + 1:], FILES)
        self.assertTrue(notes.startswith("release-notes.md"))

    def test_the_notes_say_whether_the_archive_for_macos_is_signed(self):
        self.assertIn(f"`{ARCHIVE}` was built on Linux and is not notarised", self.publish("false")[1])
        self.assertIn(f"`{ARCHIVE}` was built on macOS, signed", self.publish("true")[1])


if __name__ == "__main__":
    unittest.main()
