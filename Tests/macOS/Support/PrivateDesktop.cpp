#include "Support/PrivateDesktop.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <stdexcept>
#include <string>

#include "ZephlinCore/FileDescriptor.h"

namespace zephlin::test {

namespace {

[[noreturn]] void becomeDisplay(const FileDescriptor& output) {
  ::prctl(PR_SET_PDEATHSIG, SIGTERM);
  ::fcntl(output.get(), F_SETFD, 0);
  ::dup2(::open("/dev/null", O_WRONLY | O_CLOEXEC), STDERR_FILENO);
  const std::string number = std::to_string(output.get());
  ::execlp("Xvfb", "Xvfb", "-displayfd", number.c_str(), "-screen", "0", "1024x768x24", "-nolisten",
           "tcp", nullptr);
  ::_exit(127);
}

}  // namespace

PrivateDesktop::PrivateDesktop() {
  settleIn();
  startDisplay();
}

PrivateDesktop::~PrivateDesktop() {
  ::kill(display_, SIGTERM);
  ::waitpid(display_, nullptr, 0);
}

// GNUstep asks the user database for the home, and its own configuration for the rest.
void PrivateDesktop::settleIn() {
  const std::string configuration = home_.file("GNUstep.conf");
  std::ofstream out(configuration);
  out << "GNUSTEP_USER_DEFAULTS_DIR=" << home_.file("Defaults") << "\n"
      << "GNUSTEP_USER_DIR_LIBRARY=" << home_.file("Library") << "\n";
  ::setenv("GNUSTEP_CONFIG_FILE", configuration.c_str(), 1);
  ::setenv("HOME", home_.path().c_str(), 1);
}

void PrivateDesktop::startDisplay() {
  Pipe number = makePipe();
  display_ = ::fork();
  if (display_ == 0) {
    becomeDisplay(number.writeEnd);
  }
  number.writeEnd.close();
  std::string display = ":";
  char byte = 0;
  while (::read(number.readEnd.get(), &byte, 1) == 1 && byte != '\n') {
    display += byte;
  }
  if (display == ":") {
    throw std::runtime_error("Xvfb does not start");
  }
  ::setenv("DISPLAY", display.c_str(), 1);
}

}  // namespace zephlin::test
