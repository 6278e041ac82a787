#include "Zephlin/DesktopModule.h"

#include "Zephlin/StartApplication.h"

int zephlinStartApplication(int argc, char** argv) {
  return zephlin::startApplication(argc, argv);
}
