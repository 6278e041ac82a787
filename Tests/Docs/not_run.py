"""The commands of the documents that are not run by this test, and why."""

# What the whole command has to match.
NOT_RUN = {
    r"\./(run|test)\b.*": "installs, or takes as long as all the tests",
    r"(cmake|ctest) .*": "builds, tests or measures all of the tree; ./test does the first two",
    r"ZEPHLIN_RENEW_GOLDEN=.*": "changes the sources",
    r"gdb .*": "waits for a person",
    r"git config .*": "changes the clone",
    r"build/\w+/tests/Simulation .*": "is a test of another label, which need not be built",
    r"sudo (apt|adduser|modprobe|udevadm) .*": "changes the machine",
    r"(sudo )?(systemctl|journalctl) .*": "needs systemd",
    r"xcrun .*": "needs a Mac",
    r"export ZEPHLIN_.*": "needs a Mac",
    r"Packaging/macOS/.*": "needs a Mac",
}
