#include "Tests/Desktop/Harness/LoginManager.h"

#include "Tests/Desktop/Harness/Waiting.h"

namespace zephlin::test {
namespace {

const QString managerName = "org.freedesktop.login1";

}  // namespace

LoginManager::LoginManager(PrivateBus& systemBus, const std::string& folder,
                           const Environment& environment)
    : bus_(systemBus),
      mock_({"/usr/bin/python3", "-m", "dbusmock", "--system", "--template", "logind"}, environment,
            folder + "/logind.log") {
  waitUntil("a login manager", [this] { return bus_.hasName(managerName); });
}

void LoginManager::prepareForSleep(bool begins) {
  const QVariantList arguments{QVariant(begins)};
  call(bus_.connection(),
       {managerName, "/org/freedesktop/login1", "org.freedesktop.DBus.Mock", "EmitSignal"},
       {"org.freedesktop.login1.Manager", "PrepareForSleep", "b", arguments});
}

}  // namespace zephlin::test
