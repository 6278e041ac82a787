// WithPrivateBin DIRECTORY PROGRAM [ARGUMENT …]
//
// Runs PROGRAM where DIRECTORY is /usr/bin and /run is empty, in a mount namespace of its own: a
// test can put a program of its own at /usr/bin/hidutil, or a service at its usual place, without
// touching the machine. Descriptors, signals, environment and process identifier are unchanged.

#include <unistd.h>

#include <cstdio>
#include <exception>

#include "Tests/Support/PrivateMachine.h"

int main(int argc, char* argv[]) {
  if (argc < 3) {
    std::fputs("usage: WithPrivateBin DIRECTORY PROGRAM [ARGUMENT ...]\n", stderr);
    return 64;
  }
  try {
    zephlin::test::enterPrivateMachine();
    zephlin::test::mountPrograms(argv[1]);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 126;
  }
  ::execv(argv[2], argv + 2);
  std::perror(argv[2]);
  return 126;
}
