#include "Zephlin/StartApplication.h"

#include "Platform/Platform.h"

int zephlinStartApplication(int argc, char** argv) {
  return zephlin::runApplication(*zephlin::makePlatform(argc, argv));
}
