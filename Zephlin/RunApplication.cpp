#include <memory>

#include "Zephlin/AppDelegate.h"
#include "Zephlin/MainMenu.h"
#include "Zephlin/StartApplication.h"

namespace zephlin {

int runApplication(Platform& platform) {
  Application& app = platform.application();
  if (app.handOverToRunningInstance()) {
    return 0;
  }
  const auto delegate = std::make_shared<AppDelegate>(platform);
  app.setDelegate(delegate);
  app.becomeAccessory();
  MainMenu::install(app);
  app.run();
  return 0;
}

}  // namespace zephlin
