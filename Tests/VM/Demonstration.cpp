// Shows in the virtual machine what Zephlin does to Caps Lock: ./run vm.

#include <iostream>
#include <stdexcept>

#include "Tests/VM/RunProgram.h"
#include "Tests/VM/Typist.h"

namespace zephlin {
namespace {

void say(const std::string& text) {
  std::cout << text << std::endl;
}

/// Prints a command and what it has printed.
void show(const std::string& command, const std::string& printed) {
  std::cout << "\n$ " << command << '\n' << printed << std::flush;
}

/// Types and prints what came of it, which must be what Zephlin promises.
void type(Typist& typist, const std::string& expected, const std::string& comment) {
  say("\n==> Typing it");
  const std::string typed = typist.typeHello(0);
  if (typed != expected) {
    throw std::runtime_error("Typed: " + typed + ", which should have been " + expected + ".");
  }
  say("Typed: " + typed + comment);
}

void demonstrate() {
  say("\n==> Booting Debian's kernel in a virtual machine");
  VirtualMachine machine(VIRTUAL_MACHINE_IMAGES);
  machine.plug({0});
  Typist typist(machine);
  show("uname -sr", machine.output("uname -sr"));
  show("hidutil list", machine.output("hidutil list"));

  say("\nWhat is typed each time, quickly: Caps Lock, H, Caps Lock again and, before that key is");
  say("released, e; then e once more.");
  type(typist, "HEe", "      The first e came before the release of Caps Lock.");
  show("Zephlin apply", typist.apply());
  type(typist, "Hee", "      Caps Lock was off at its press.");
  show("Zephlin restore", typist.restore());
  type(typist, "HEe", "      As it was before.");
  typist.finish();
}

}  // namespace
}  // namespace zephlin

int main() {
  return zephlin::runProgram(zephlin::demonstrate);
}
