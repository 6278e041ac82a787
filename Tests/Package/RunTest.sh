#!/usr/bin/env bash
# Types a command in this clone: RunTest.sh COMMAND...
#
# Whatever it installs or builds ends with the test.
# shellcheck disable=SC2034
needs_network=yes
# shellcheck source=Tests/Package/machine.sh
. "$(dirname "$0")/machine.sh"

make_machine /
put_clone_on_machine
in_clone "$*" </dev/null | tee /mnt/output
check "it gets to its end" grep "^==> Done" /mnt/output
