#include "Base/StandardDescriptors.h"

#include <fcntl.h>
#include <unistd.h>

namespace zephlin {

void openMissingStandardDescriptors() {
  for (int wanted = STDIN_FILENO; wanted <= STDERR_FILENO; ++wanted) {
    if (::fcntl(wanted, F_GETFD) >= 0) {
      continue;
    }
    // The lowest free descriptor is the wanted one, since all below it are open by now. It is left
    // open for the life of the program, as a standard descriptor is.
    if (::open("/dev/null", O_RDWR) < 0) {
      return;
    }
  }
}

}  // namespace zephlin
