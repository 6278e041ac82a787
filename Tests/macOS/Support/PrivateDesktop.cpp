#include "Support/PrivateDesktop.h"

#include <cstdlib>
#include <fstream>
#include <string>

namespace zephlin::test {

PrivateDesktop::PrivateDesktop() {
  settleIn();
  ::setenv("DISPLAY", (":" + display_.address()).c_str(), 1);
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

}  // namespace zephlin::test
