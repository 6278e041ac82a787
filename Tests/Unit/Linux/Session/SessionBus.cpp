#include "Tests/Unit/Linux/Session/SessionBus.h"

#include <fcntl.h>

#include "Tests/Unit/Linux/Session/ReadLine.h"

namespace zephlin::test {

SessionBus::SessionBus() : addressPipe_(makePipe()) {
  const int inherited = addressPipe_.writeEnd.get();
  daemon_ = std::make_unique<TestProcess>(
      std::vector<std::string>{"/usr/bin/dbus-daemon", "--session", "--nofork",
                               "--print-address=" + std::to_string(inherited)},
      [inherited] { ::fcntl(inherited, F_SETFD, 0); });
  addressPipe_.writeEnd.close();
  address_ = readLine(addressPipe_.readEnd);
}

}  // namespace zephlin::test
