"""The commands in the documents that this test does not run, and why."""

# Patterns that match a whole command.
NOT_RUN = {
    r"\./(run|test)\b.*": "installs packages, or runs all tests",
    r"(cmake|ctest) .*": "builds or tests the whole tree, which ./test does anyway",
    r"ZEPHLIN_RENEW_GOLDEN=.*": "changes the sources",
    r"gdb .*": "waits for a person",
    r"git config .*": "changes the clone",
    r"build/\w+/tests/Simulation .*": "has another label, and may not be built",
    r"sudo (apt|adduser|modprobe|udevadm) .*": "changes the machine",
    r"(sudo )?(systemctl|journalctl) .*": "needs systemd",
    r"sudo (dnf|rpm-ostree|systemd-sysusers)\b.*": "changes the machine, or needs Fedora",
    r"sudo cmake --install .*": "changes the machine",
    r"(rpmbuild|makepkg) .*": "needs a release, and builds the whole tree",
    r"git (tag|push|checkout) .*": "publishes a version, or goes back to one",
    r"(gh|sha256sum|\(cd build/release-files) .*": "needs a release",
    r"Packaging/(Apt|Release)/.*": "needs a release",
    r"(sudo )?zephlin-hidd --check": "fails where there are no keyboards",
    r"xcrun .*": "needs a Mac",
    r"export ZEPHLIN_.*": "needs a Mac",
    r"Packaging/macOS/.*": "needs a Mac",
}
