#include "Zephlin/LoginItem.h"

namespace zephlin::LoginItem {

namespace {

bool hasStatus(Platform& platform, LoginServiceStatus status) {
  return runsFromApplicationBundle(platform) && platform.loginService().status() == status;
}

}  // namespace

bool runsFromApplicationBundle(Platform& platform) {
  return platform.processInfo().mainBundlePath().ends_with(".app");
}

void setEnabled(Platform& platform, bool enabled) {
  if (!runsFromApplicationBundle(platform)) {
    return;
  }
  if (enabled) {
    platform.loginService().registerMainApp();
  } else {
    platform.loginService().unregisterMainApp();
  }
}

bool isEnabled(Platform& platform) {
  return hasStatus(platform, LoginServiceStatus::Enabled);
}

bool needsApproval(Platform& platform) {
  return hasStatus(platform, LoginServiceStatus::RequiresApproval);
}

}  // namespace zephlin::LoginItem
