// Boots the virtual machine and measures in it how late keys come (KeyDelays.cpp). Prints figures;
// not a test.

#include <iostream>

#include "Tests/VM/RunProgram.h"
#include "Tests/VM/VirtualMachine.h"

namespace {

void measure() {
  // As any computer has; a program that has to be woken need not wait for the one that wakes it.
  zephlin::VirtualMachine machine(VIRTUAL_MACHINE_IMAGES, {.processors = 2});
  machine.output(
      "zephlin-hidd 2>/dev/null & mkfifo /tmp/go; KeyDelays </tmp/go >/tmp/delays 2>&1 & "
      "delays=$!; exec 9>/tmp/go");
  machine.waitUntil("hidutil list | grep -q Piped");
  machine.output(R"(hidutil property --matching '{"Product":"Rewritten"}' )"
                 R"(--set '{"CapsLockDelayOverride":0}')");
  // As their own service runs them, ahead of ordinary programs, with the plugin for Caps Lock that
  // Debian has; ordinary keys pass through it.
  machine.output(
      "piped=/dev/input/event$(grep -l -x Piped /sys/class/input/event*/device/name | "
      "tr -c -d 0-9); nice -n -20 interception -g $piped | nice -n -20 caps2esc | nice -n -20 "
      "uinput -d $piped &");
  machine.waitUntil(
      "[ $(grep -l -x -E 'Rewritten|Piped' /sys/class/input/event*/device/name | "
      "wc -l) = 4 ]");
  machine.output("udevadm settle; sleep 2; echo >&9");
  std::cout << machine.run("wait $delays; cat /tmp/delays").output;
}

}  // namespace

int main() {
  return zephlin::runProgram(measure);
}
